#include "base/osProcess.h"

#include "base/exSysError.h"

#include <algorithm>
#include <cerrno>
#include <mutex>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace Zu
{

namespace
{

// Children that were let go of before their end. The system keeps the record of an ended child
// until its parent asks for it, so they are asked after whenever one is started or let go of.
class DroppedChildren
{
public:
    void add(pid_t child)
    {
        const std::lock_guard<std::mutex> guard(_lock);
        _children.push_back(child);
        reapEnded();
    }

    void reap()
    {
        const std::lock_guard<std::mutex> guard(_lock);
        reapEnded();
    }

private:
    void reapEnded()
    {
        const auto hasEnded = [](pid_t child) { return waitpid(child, nullptr, WNOHANG) != 0; };
        _children.erase(std::remove_if(_children.begin(), _children.end(), hasEnded),
                        _children.end());
    }

    std::mutex _lock;
    std::vector<pid_t> _children;
};

// Never destroyed: static objects of clients may let go of children at the very end.
DroppedChildren& droppedChildren()
{
    static DroppedChildren* const children = new DroppedChildren;
    return *children;
}

class OsProcessLinux final : public OsProcessImp
{
public:
    explicit OsProcessLinux(pid_t child) : _child(child), _ended(false) {}

    ~OsProcessLinux() override
    {
        if (!_ended) droppedChildren().add(_child);
    }

    void wait() override
    {
        if (_ended) return;
        while (waitpid(_child, nullptr, 0) < 0 && errno == EINTR) continue;
        _ended = true;
    }

private:
    const pid_t _child;
    bool _ended;
};

} // namespace

ObjPtrRet<OsProcessImp> OsProcess::performStart(const char* const* argv)
{
    droppedChildren().reap();
    pid_t child = 0;
    int error = ENOENT;
    if (argv[0])
    {
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
        error = posix_spawnp(&child, argv[0], &actions, nullptr, const_cast<char* const*>(argv),
                             environ);
        posix_spawn_file_actions_destroy(&actions);
    }
    if (error != 0)
    {
        errno = error;
        throw ExSysErrorWindows(__FILE__, __LINE__);
    }
    return ObjPtrRet<OsProcessImp>(new OsProcessLinux(child));
}

} // namespace Zu
