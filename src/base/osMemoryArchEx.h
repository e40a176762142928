/// @file
/// The exceptions of the memory architecture.

#ifndef ZU_BASE_OSMEMORYARCHEX_H
#define ZU_BASE_OSMEMORYARCHEX_H

#include "exBase.h"

#include <stdexcept>

namespace Zu
{

/// Root of the exceptions of OsMemoryArch. The library raises none of them itself.
class ZU_BASE_API OsMemoryArchEx : public ExBase
{
public:
    class ExUnknownCPU;
    class ExUnknownCPUBoard;

protected:
    OsMemoryArchEx(const char* file, int line);
};

/// "Unknown CPU Type: Can not compute memory architecture parameters."
class ZU_BASE_API OsMemoryArchEx::ExUnknownCPU : public std::runtime_error, public OsMemoryArchEx
{
public:
    ExUnknownCPU(const char* file, int line);

    const char* what() const noexcept override;
    ExBase* clone() const override;
};

/// "Unknown CPU Board Type: Can not compute memory architecture parameters."
class ZU_BASE_API OsMemoryArchEx::ExUnknownCPUBoard : public std::runtime_error,
                                                      public OsMemoryArchEx
{
public:
    ExUnknownCPUBoard(const char* file, int line);

    const char* what() const noexcept override;
    ExBase* clone() const override;
};

} // namespace Zu

#endif
