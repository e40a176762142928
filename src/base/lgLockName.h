/// @file
/// The name of an inter-process lock in a form that a file system accepts. Internal to the library.

#ifndef ZU_BASE_LGLOCKNAME_H
#define ZU_BASE_LGLOCKNAME_H

#include <cstdint>
#include <string>

namespace Zu
{

/// "/ZU-lock-", the user's number, "-" and the name, in which every byte except letters, digits,
/// "-", "_" and "." is written as "%" and two hexadecimal digits. Different names stay different,
/// no name leads outside the folder, and users do not interfere with each other.
std::string lgLockName(const char* name, std::uint32_t user);

} // namespace Zu

#endif
