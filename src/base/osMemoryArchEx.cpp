#include "base/osMemoryArchEx.h"

#include "base/exDefine.h"

namespace Zu
{

OsMemoryArchEx::OsMemoryArchEx(const char* file, int line) : ExBase(file, line) {}

OsMemoryArchEx::ExUnknownCPU::ExUnknownCPU(const char* file, int line)
    : std::runtime_error(""), OsMemoryArchEx(file, line)
{
    setReason("Unknown CPU Type: Can not compute memory architecture parameters.");
}

ZU_EX_WHAT_AND_CLONE(OsMemoryArchEx::ExUnknownCPU)

OsMemoryArchEx::ExUnknownCPUBoard::ExUnknownCPUBoard(const char* file, int line)
    : std::runtime_error(""), OsMemoryArchEx(file, line)
{
    setReason("Unknown CPU Board Type: Can not compute memory architecture parameters.");
}

ZU_EX_WHAT_AND_CLONE(OsMemoryArchEx::ExUnknownCPUBoard)

} // namespace Zu
