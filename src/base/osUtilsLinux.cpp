#include "base/osUtils.h"

#include "base/duplicateString.h"
#include "base/exRaise.h"

#include <cerrno>
#include <climits>
#include <ctime>
#include <pwd.h>
#include <unistd.h>
#include <vector>

namespace Zu
{

void OsUtils::sleep(unsigned int seconds)
{
    timespec left{static_cast<time_t>(seconds), 0};
    while (nanosleep(&left, &left) != 0 && errno == EINTR) continue;
}

std::uint32_t OsUtils::getPid()
{
    return static_cast<std::uint32_t>(getpid());
}

std::uint32_t OsUtils::getThreadId()
{
    return static_cast<std::uint32_t>(gettid());
}

ArrayPtrRet<char> OsUtils::getHostName()
{
    char name[HOST_NAME_MAX + 1];
    if (gethostname(name, sizeof name) != 0) ZU_RAISE_ERRNO(errno);
    return duplicateString(name, HOST_NAME_MAX);
}

ArrayPtrRet<char> OsUtils::getUserName(bool)
{
    std::vector<char> buffer(1024);
    passwd record;
    passwd* found = nullptr;
    int error = 0;
    do
    {
        if (error == ERANGE) buffer.resize(2 * buffer.size());
        error = getpwuid_r(geteuid(), &record, buffer.data(), buffer.size(), &found);
    } while (error == ERANGE || error == EINTR);
    if (!found) ZU_RAISE_ERRNO(error != 0 ? error : ENOENT);
    return duplicateString(record.pw_name);
}

} // namespace Zu
