/// @file
/// The one way to raise the error of a failed system call. Internal to the library.

#ifndef ZU_BASE_EXRAISE_H
#define ZU_BASE_EXRAISE_H

#include "exSystemCode.h"

/// Raises ExSysErrorWindows with the platform's error `code`, from this file and line.
#define ZU_RAISE_SYSTEM_ERROR(code) ::Zu::raiseSystemError((code), __FILE__, __LINE__)

/// Raises ExSysErrorWindows with the error of this thread's last failed call of the platform.
#define ZU_RAISE_LAST_ERROR() ZU_RAISE_SYSTEM_ERROR(::Zu::lastSystemCode())

/// Raises ExSysErrorANSI with `code`, a value of `errno`, from this file and line.
#define ZU_RAISE_ERRNO(code) ::Zu::raiseErrno((code), __FILE__, __LINE__)

namespace Zu
{

/// Raises ExSysErrorWindows with `code`, which also becomes the thread's last error.
[[noreturn]] void raiseSystemError(int code, const char* file, int line);

/// Raises ExSysErrorANSI with `code`, which also becomes `errno`.
[[noreturn]] void raiseErrno(int code, const char* file, int line);

} // namespace Zu

#endif
