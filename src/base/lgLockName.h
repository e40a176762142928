/// @file
/// The name of a lock between processes as a file system can hold it. Internal to the library.

#ifndef ZU_BASE_LGLOCKNAME_H
#define ZU_BASE_LGLOCKNAME_H

#include <string>

namespace Zu
{

/// "/ZU-lock-" and the name, in which every byte but letters, digits, "-", "_" and "." is written
/// as "%" and two hexadecimal digits: different names stay different, and none leads elsewhere.
std::string lgLockName(const char* name);

} // namespace Zu

#endif
