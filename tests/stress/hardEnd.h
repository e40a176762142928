// Hard limits of a process: how the system ends it, and refuses its requests.

#ifndef ZU_TESTS_STRESS_HARDEND_H
#define ZU_TESTS_STRESS_HARDEND_H

#include <cstddef>
#include <cstdint>

namespace stress
{

// Ends the process as if another one killed it: none of its code runs any more.
[[noreturn]] void killSelf();

// quick_exit(), or where there is none exit().
[[noreturn]] void quickExit();

// Over-aligned memory from the platform.
void* allocateAligned(std::size_t size, std::size_t alignment);
void freeAligned(void* memory);

// What the system can limit; Windows has none of these limits.
enum class Resource
{
    ADDRESS_SPACE,
    DESCRIPTORS,
    FILE_SIZE
};

// Lowers a limit while it lives.
class ResourceLimit
{
public:
    ResourceLimit(Resource resource, std::uint64_t limit);
    ResourceLimit(const ResourceLimit&) = delete;
    ResourceLimit& operator=(const ResourceLimit&) = delete;
    ~ResourceLimit();

private:
    Resource _resource;
    std::uint64_t _former;
};

// Makes a file that would get too long end the process in the calling thread, whatever signals that
// blocks.
void letLongFilesKill();

// How much address space the process has.
std::uint64_t addressSpace();

} // namespace stress

#endif
