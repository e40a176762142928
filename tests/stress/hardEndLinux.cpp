#include "stress/hardEnd.h"

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <sys/resource.h>
#include <unistd.h>

namespace stress
{

namespace
{

auto numberOf(Resource resource)
{
    if (resource == Resource::ADDRESS_SPACE) return RLIMIT_AS;
    return resource == Resource::DESCRIPTORS ? RLIMIT_NOFILE : RLIMIT_FSIZE;
}

std::uint64_t exchangeLimit(Resource resource, std::uint64_t value)
{
    rlimit limit;
    if (getrlimit(numberOf(resource), &limit) != 0) std::abort();
    const std::uint64_t former = limit.rlim_cur;
    limit.rlim_cur = value;
    if (setrlimit(numberOf(resource), &limit) != 0) std::abort();
    return former;
}

} // namespace

void killSelf()
{
    kill(getpid(), SIGKILL);
    while (true) pause();
}

void quickExit()
{
    std::quick_exit(0);
}

void* allocateAligned(std::size_t size, std::size_t alignment)
{
    return std::aligned_alloc(alignment, (size + alignment - 1) / alignment * alignment);
}

void freeAligned(void* memory)
{
    std::free(memory);
}

ResourceLimit::ResourceLimit(Resource resource, std::uint64_t limit)
    : _resource(resource), _former(exchangeLimit(resource, limit))
{
}

ResourceLimit::~ResourceLimit()
{
    exchangeLimit(_resource, _former);
}

void letLongFilesKill()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGXFSZ);
    if (pthread_sigmask(SIG_UNBLOCK, &signals, nullptr) != 0) std::abort();
}

std::uint64_t addressSpace()
{
    std::uint64_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    return pages * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
}

} // namespace stress
