#include "base/osMemoryArch.h"

#include "base/osMemoryArchImp.h"

namespace Zu
{

OsMemoryArch::OsMemoryArch() = default;

const OsMemoryArch& OsMemoryArch::getInstance()
{
    static const OsMemoryArchImp* const instance = new OsMemoryArchImp;
    return *instance;
}

OsMemoryArchImp::OsMemoryArchImp()
{
    OsCpuInfo::CacheInfo l1Data{};
    OsCpuInfo::CacheInfo l1Instruction{};
    OsCpuInfo::CacheInfo l2Unified{};
    int pageSize = 0;
    OsCpuInfo::getMemoryInfo(&l1Data, &l1Instruction, &l2Unified, &pageSize);
    set(l1Data, l2Unified, pageSize);
}

OsMemoryArchImp::OsMemoryArchImp(const OsCpuInfo::CacheInfo& l1Data,
                                 const OsCpuInfo::CacheInfo& l2Unified, int pageSize)
{
    set(l1Data, l2Unified, pageSize);
}

void OsMemoryArchImp::set(const OsCpuInfo::CacheInfo& l1Data, const OsCpuInfo::CacheInfo& l2Unified,
                          int pageSize)
{
    _l1DataSize = l1Data._size;
    _l2Size = l2Unified._size;
    _l1DataWaySize = l1Data._size / l1Data._associativity;
    _l2WaySize = l2Unified._size / l2Unified._associativity;
    _l1DataLineSize = l1Data._lineSize;
    _l2LineSize = l2Unified._lineSize;
    _pageSize = pageSize;
}

int OsMemoryArchImp::getLargeBlockSize() const
{
    return _largeBlockSize;
}

int OsMemoryArchImp::getL1DataSize() const
{
    return _l1DataSize;
}

int OsMemoryArchImp::getL2Size() const
{
    return _l2Size;
}

int OsMemoryArchImp::getL1DataWaySize() const
{
    return _l1DataWaySize;
}

int OsMemoryArchImp::getL2WaySize() const
{
    return _l2WaySize;
}

int OsMemoryArchImp::getL1DataLineSize() const
{
    return _l1DataLineSize;
}

int OsMemoryArchImp::getL2LineSize() const
{
    return _l2LineSize;
}

int OsMemoryArchImp::getPageSize() const
{
    return _pageSize;
}

int OsMemoryArchImp::getAlignment() const
{
    return 8;
}

} // namespace Zu
