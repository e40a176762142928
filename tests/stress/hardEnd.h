// What the system does to a process: ends it, and refuses it what it asks for.

#ifndef ZU_TESTS_STRESS_HARDEND_H
#define ZU_TESTS_STRESS_HARDEND_H

#include <cstddef>
#include <cstdint>

namespace stress
{

// Ends the process as another one would that kills it: nothing of it is carried out any more.
[[noreturn]] void killSelf();

// The platforms' own memory, aligned to more than usual.
void* allocateAligned(std::size_t size, std::size_t alignment);
void freeAligned(void* memory);

// What the system may be asked to limit; Windows has none of these limits.
enum class Resource
{
    ADDRESS_SPACE,
    DESCRIPTORS,
    FILE_SIZE
};

// Lowers a limit for its life.
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

// A file that would get too long ends the process in the calling thread, whatever that blocks.
void letLongFilesKill();

// How much address space the process has.
std::uint64_t addressSpace();

} // namespace stress

#endif
