/// @file
/// The name of a lock between processes as a file system can hold it. Internal to the library.

#ifndef ZU_BASE_LGLOCKNAME_H
#define ZU_BASE_LGLOCKNAME_H

#include <cstdint>
#include <string>

namespace Zu
{

/// "/ZU-lock-", the user's number, "-" and the name, in which every byte but letters, digits, "-",
/// "_" and "." is written as "%" and two hexadecimal digits: different names stay different, none
/// leads elsewhere, and users don't get in each other's way.
std::string lgLockName(const char* name, std::uint32_t user);

} // namespace Zu

#endif
