/// @file
/// The exceptions of loading shared libraries.

#ifndef ZU_BASE_OSSHAREDLIBEX_H
#define ZU_BASE_OSSHAREDLIBEX_H

#include "exBase.h"

#include <stdexcept>

namespace Zu
{

/// Root of the exceptions of OsSharedLib.
class ZU_BASE_API OsSharedLibEx : public ExBase
{
public:
    class ExCantOpenLib;
    class ExFunctionNotFound;

protected:
    OsSharedLibEx(const char* file, int line);
};

/// "Can't open dynamic library '<path>': <message of the system>.", the path cut to 256 characters
/// and the message to 512.
class ZU_BASE_API OsSharedLibEx::ExCantOpenLib : public OsSharedLibEx, public std::runtime_error
{
public:
    /// `message` is the system's; null texts count as empty.
    ExCantOpenLib(const char* file, int line, const char* path, const char* message);

    const char* what() const noexcept override;
    ExBase* clone() const override;
};

/// "Function '<name>' not found in dynamic library '<path>'.", the name cut to 64 characters and
/// the path to 256.
class ZU_BASE_API OsSharedLibEx::ExFunctionNotFound : public OsSharedLibEx,
                                                      public std::runtime_error
{
public:
    /// The library that was searched, and the name of the function; null texts count as empty.
    ExFunctionNotFound(const char* file, int line, const char* path, const char* name);

    const char* what() const noexcept override;
    ExBase* clone() const override;
};

} // namespace Zu

#endif
