/// @file
/// Cache figures for tuned code.

#ifndef ZU_BASE_OSMEMORYARCH_H
#define ZU_BASE_OSMEMORYARCH_H

#include "baseApi.h"

namespace Zu
{

/// Figures for fitting code to caches and pages, all in bytes. A figure that the processor does not
/// report is 0.
///
/// The package "osal" makes the instance; after that any thread may read it.
class ZU_BASE_API OsMemoryArch
{
public:
    /// For the instance, which getInstance() makes.
    OsMemoryArch();
    OsMemoryArch(const OsMemoryArch&) = delete;
    OsMemoryArch& operator=(const OsMemoryArch&) = delete;

    /// The size of a block that is too large for any cache; fixed at 0x10000000.
    virtual int getLargeBlockSize() const = 0;

    /// Size of the first-level data cache.
    virtual int getL1DataSize() const = 0;

    /// Size of the second-level cache.
    virtual int getL2Size() const = 0;

    /// Size of one way of the first-level data cache.
    virtual int getL1DataWaySize() const = 0;

    /// Size of one way of the second-level cache.
    virtual int getL2WaySize() const = 0;

    /// Length of a line of the first-level data cache.
    virtual int getL1DataLineSize() const = 0;

    /// Length of a line of the second-level cache.
    virtual int getL2LineSize() const = 0;

    /// Size of a page of memory.
    virtual int getPageSize() const = 0;

    /// Alignment of data; fixed at 8.
    virtual int getAlignment() const = 0;

    /// The one instance, made at the first call. It lives to the end of the process.
    static const OsMemoryArch& getInstance();

protected:
    // Instances are never destroyed, so the destructor has no place among the virtual operations.
    ~OsMemoryArch() = default;
};

} // namespace Zu

#endif
