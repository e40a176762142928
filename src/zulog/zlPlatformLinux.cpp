#include "zulog/zlPlatform.h"

#include "app/lgMapFile.h"
#include "app/lgServiceFile.h"
#include "zulog/zlFile.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Zu
{

std::vector<std::string> ZlPlatform::getWords(int argc, char** argv)
{
    return {argv + (argc > 0 ? 1 : 0), argv + argc};
}

void ZlPlatform::prepare()
{
    signal(SIGPIPE, SIG_IGN);
    rlimit limit = {};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return;
    limit.rlim_cur = limit.rlim_max;
    setrlimit(RLIMIT_NOFILE, &limit);
}

std::size_t ZlPlatform::getFileLimit()
{
    const long limit = sysconf(_SC_OPEN_MAX);
    return limit < 0 ? std::size_t{1} << 16 : static_cast<std::size_t>(limit);
}

bool ZlPlatform::isTerminal(std::FILE* file)
{
    return isatty(fileno(file)) != 0;
}

std::string ZlPlatform::getUsualPager()
{
    return "less";
}

bool ZlPlatform::hasProgram(const std::string& name)
{
    return std::system(("command -v " + name + " >/dev/null 2>&1").c_str()) == 0;
}

std::FILE* ZlPlatform::openPager(const std::string& command)
{
    // Colours are shown, and less ends by itself if everything fits on the screen.
    setenv("LESS", "FRX", 0);
    return popen(command.c_str(), "w");
}

bool ZlPlatform::closePager(std::FILE* pager)
{
    constexpr int NOT_FOUND = 127;
    const int status = pclose(pager);
    return !WIFEXITED(status) || WEXITSTATUS(status) != NOT_FOUND;
}

std::FILE* ZlPlatform::openToWrite(const std::string& name, bool isNew, std::string& reason)
{
    std::FILE* const file = std::fopen(name.c_str(), isNew ? "wxe" : "we");
    if (!file) reason = LgServiceFile::errorText(errno);
    return file;
}

std::int64_t ZlPlatform::getNow()
{
    return lgWallClock();
}

} // namespace Zu
