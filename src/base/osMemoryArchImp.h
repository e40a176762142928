/// @file
/// The figures of this machine. Internal to the library.

#ifndef ZU_BASE_OSMEMORYARCHIMP_H
#define ZU_BASE_OSMEMORYARCHIMP_H

#include "osCpuInfo.h"
#include "osMemoryArch.h"

namespace Zu
{

/// The figures, from what the processor reports about its caches. The instruction cache is not
/// exposed.
class OsMemoryArchImp final : public OsMemoryArch
{
public:
    /// Reads the figures from this machine's processor.
    OsMemoryArchImp();

    OsMemoryArchImp(const OsCpuInfo::CacheInfo& l1Data, const OsCpuInfo::CacheInfo& l2Unified,
                    int pageSize);

    int getLargeBlockSize() const override;
    int getL1DataSize() const override;
    int getL2Size() const override;
    int getL1DataWaySize() const override;
    int getL2WaySize() const override;
    int getL1DataLineSize() const override;
    int getL2LineSize() const override;
    int getPageSize() const override;
    int getAlignment() const override;

private:
    void set(const OsCpuInfo::CacheInfo& l1Data, const OsCpuInfo::CacheInfo& l2Unified,
             int pageSize);

    int _largeBlockSize = 0x10000000;
    int _l1DataSize;
    int _l2Size;
    int _l1DataWaySize;
    int _l2WaySize;
    int _l1DataLineSize;
    int _l2LineSize;
    int _pageSize;
};

} // namespace Zu

#endif
