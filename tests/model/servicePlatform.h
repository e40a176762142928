// What the log service stands on, for scenarios: the platform, and a map without a file that makes
// small queues.

#ifndef ZU_TESTS_MODEL_SERVICEPLATFORM_H
#define ZU_TESTS_MODEL_SERVICEPLATFORM_H

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace servicePlatform
{

// The rings of the queues to come.
struct Sizes
{
    std::uint32_t _entries;
    std::uint32_t _characters;
};
inline Sizes sizes{4, 64};

// Whether each letter of a text was written once. Each event of a scenario has letters of its own.
// For the thread that writes, and those for whom it has written.
bool isWritten(std::string_view text);

// For the beginning of a scenario: no thread has a queue, nothing is written.
void reset();

// The calling thread's end, of which the platform notifies.
void endThread();

} // namespace servicePlatform

#endif
