// Ends another process.

#ifndef ZU_TESTS_ENDPROCESS_H
#define ZU_TESTS_ENDPROCESS_H

#include <cstdint>

namespace support
{

// None of its code runs any more. False if the system refuses.
bool killProcess(std::uint32_t id);

// Sends SIGTERM; false on Windows, where no process can send it to another one.
bool askProcessToEnd(std::uint32_t id);

} // namespace support

#endif
