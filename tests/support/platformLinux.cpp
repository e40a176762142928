#include "support/platform.h"

#include <cerrno>
#include <clocale>
#include <fcntl.h>
#include <filesystem>
#include <iterator>
#include <libintl.h>
#include <linux/membarrier.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/utsname.h>
#include <sys/wait.h>
#include <unistd.h>

namespace support
{

std::uint32_t processId()
{
    return static_cast<std::uint32_t>(getpid());
}

std::uint32_t threadId()
{
    return static_cast<std::uint32_t>(syscall(SYS_gettid));
}

std::size_t openHandles()
{
    return static_cast<std::size_t>(
        std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}));
}

std::vector<int> openDescriptors()
{
    constexpr int SOME = 1024;
    std::vector<int> numbers;
    for (int number = 0; number < SOME; ++number)
        if (fcntl(number, F_GETFD) >= 0) numbers.push_back(number);
    return numbers;
}

bool isInherited(int descriptor)
{
    return (fcntl(descriptor, F_GETFD) & FD_CLOEXEC) == 0;
}

void closeStandardStreams()
{
    for (const int number : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) close(number);
}

std::string hostName()
{
    utsname names;
    return uname(&names) == 0 ? names.nodename : "";
}

int pageSize()
{
    return getpagesize();
}

std::string translateRuntime(const std::string& directory)
{
    bindtextdomain("libc", directory.empty() ? "/usr/share/locale" : directory.c_str());
    return std::setlocale(LC_MESSAGES, nullptr);
}

std::size_t threadCount()
{
    return static_cast<std::size_t>(
        std::distance(std::filesystem::directory_iterator("/proc/self/task"), {}));
}

unsigned int setModeMask(unsigned int mask)
{
    return umask(mask);
}

std::uint32_t userId()
{
    return geteuid();
}

bool giveToAnotherUser(const std::string& path)
{
    constexpr uid_t NOBODY = 65534;
    return lchown(path.c_str(), NOBODY, NOBODY) == 0;
}

bool resolvesLongPaths()
{
    return true;
}

bool hasProcessBarrier()
{
    const long commands = syscall(SYS_membarrier, MEMBARRIER_CMD_QUERY, 0, 0);
    return commands > 0 && (commands & MEMBARRIER_CMD_PRIVATE_EXPEDITED) != 0;
}

void awaitEndOfAnyChild()
{
    siginfo_t info{};
    while (waitid(P_ALL, 0, &info, WEXITED | WNOWAIT) < 0 && errno == EINTR) continue;
}

Side forkProcess()
{
    constexpr unsigned int PATIENCE = 120;
    if (fork() != 0) return Side::PARENT;
    alarm(PATIENCE);
    return Side::CHILD;
}

int awaitForkedChild()
{
    int status = 0;
    while (wait(&status) < 0 && errno == EINTR) continue;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

bool hasUnreapedChild()
{
    siginfo_t info{};
    return waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) == 0 && info.si_pid != 0;
}

} // namespace support
