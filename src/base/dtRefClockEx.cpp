#include "base/dtRefClockEx.h"

#include "base/exDefine.h"

namespace Zu
{

DtRefClockEx::DtRefClockEx(const char* file, int line) : ExBase(file, line) {}

DtRefClockEx::SourceMismatch::SourceMismatch(const char* file, int line)
    : std::logic_error(""), DtRefClockEx(file, line)
{
    setReason("Clock source name does not match system reference clock.");
}

ZU_EX_WHAT_AND_CLONE(DtRefClockEx::SourceMismatch)

DtRefClockEx::GetCount::GetCount(const char* file, int line)
    : std::logic_error(""), DtRefClockEx(file, line)
{
    setReason("Reference clock failed to get clock value.");
}

ZU_EX_WHAT_AND_CLONE(DtRefClockEx::GetCount)

} // namespace Zu
