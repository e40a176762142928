#include "base/osCpuInfo.h"

#include "base/exRaise.h"
#include "base/internalAssert.h"
#include "base/osCpuid.h"
#include "base/osCpuPlatform.h"

#include <cerrno>

namespace Zu
{

OsCpuInfo::Type OsCpuInfo::_type = OsCpuInfo::UNKNOWN;
bool OsCpuInfo::_hasMMX = false;
bool OsCpuInfo::_hasSSE = false;
std::uint64_t OsCpuInfo::_hwCounterFrequency = 0;

void OsCpuInfo::initialize()
{
    _type = osCpuTypeOf(osCpuArchitecture());
    _hasMMX = osCpuHasMMX();
    _hasSSE = osCpuHasSSE();
    if (!osCounterFrequency(_hwCounterFrequency)) ZU_RAISE_ERRNO(errno);
    ZU_INTERNAL_ASSERT(_hwCounterFrequency != 0);
}

void OsCpuInfo::finalize() {}

const char* OsCpuInfo::getTypeName()
{
    switch (_type)
    {
    case MIPS:
        return "MIPS";
    case IA32:
        return "IA32";
    case IA64:
        return "IA64";
    case UNKNOWN:
        return "UNKNOWN";
    case X64:
        break;
    }
    internalAssertionFailed("_type != X64", __FILE__, __LINE__);
}

void OsCpuInfo::getDetailedType(Type* type, int* family, int* model, int* stepping)
{
    if (type) *type = _type;
    osCpuSignature(osCpuid, family, model, stepping);
}

bool OsCpuInfo::hasMMX()
{
    return _hasMMX;
}

bool OsCpuInfo::hasSSE()
{
    return _hasSSE;
}

std::uint64_t OsCpuInfo::getHwCounterFrequency()
{
    ZU_INTERNAL_ASSERT(_hwCounterFrequency != 0);
    return _hwCounterFrequency;
}

void OsCpuInfo::getMemoryInfo(CacheInfo* l1Data, CacheInfo* l1Instruction, CacheInfo* l2Unified,
                              int* pageSize)
{
    osMemoryInfo(osCpuid, osPageSize(), l1Data, l1Instruction, l2Unified, pageSize);
}

} // namespace Zu
