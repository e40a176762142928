/// @file
/// The exceptions that wrap an error code of the operating system.

#ifndef ZU_BASE_EXSYSERROR_H
#define ZU_BASE_EXSYSERROR_H

#include "exBase.h"

#include <stdexcept>

namespace Zu
{

/// Root of the wrappers of system error codes.
class ZU_BASE_API ExSysError : public virtual ExBase, public std::runtime_error
{
protected:
    ExSysError(const char* file, int line);
};

/// A failed call of the C runtime: carries `errno` as it was at construction, with its text.
class ZU_BASE_API ExSysErrorANSI : public ExSysError
{
public:
    ExSysErrorANSI(const char* file, int line);

    /// The value of `errno`.
    int getError() const;

    const char* what() const noexcept override;
    ExBase* clone() const override;

private:
    int _error;
};

/// A failed call of the platform: carries the last system error as it was at construction, with its
/// text, or "Unknown error <code>" where the system has none. On Windows that is `GetLastError()`;
/// on Linux, where the class keeps its name, it is `errno`.
class ZU_BASE_API ExSysErrorWindows : public ExSysError
{
public:
    ExSysErrorWindows(const char* file, int line);

    /// The platform's error code.
    int getErrorCode() const;

    const char* what() const noexcept override;
    ExBase* clone() const override;

private:
    int _errorCode;
};

} // namespace Zu

#endif
