#include "base/osProcess.h"

#include "base/exRaise.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <mutex>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace Zu
{

namespace
{

// Children that were detached before they ended. The system keeps the record of an ended child
// until its parent reaps it, so this is attempted whenever a child is started or detached.
class DroppedChildren
{
public:
    // Reaps those that have ended, and ensures that one more can be added.
    void prepare()
    {
        const std::lock_guard<std::mutex> guard(_lock);
        reapEnded();
        _children.reserve(_children.size() + _running + 1);
        ++_running;
    }

    // For a child after prepare(): add() if it is detached, forget() if it has ended or was never
    // started.
    void add(pid_t child) noexcept
    {
        const std::lock_guard<std::mutex> guard(_lock);
        --_running;
        _children.push_back(child);
        reapEnded();
    }
    void forget() noexcept
    {
        const std::lock_guard<std::mutex> guard(_lock);
        --_running;
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
    // How many children may yet be added.
    std::size_t _running = 0;
};

// Never destroyed: static objects of clients may detach children at the very end.
DroppedChildren& droppedChildren()
{
    static DroppedChildren* const children = new DroppedChildren;
    return *children;
}

// The files that a child does not inherit: all but the standard ones. Raises the error of a failed
// call.
class FileActions
{
public:
    FileActions()
    {
        check(posix_spawn_file_actions_init(&_actions));
        const int error = posix_spawn_file_actions_addclosefrom_np(&_actions, STDERR_FILENO + 1);
        if (error != 0) posix_spawn_file_actions_destroy(&_actions);
        check(error);
    }
    ~FileActions()
    {
        posix_spawn_file_actions_destroy(&_actions);
    }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;

    static void check(int error)
    {
        if (error != 0) ZU_RAISE_SYSTEM_ERROR(error);
    }

    const posix_spawn_file_actions_t* get() const
    {
        return &_actions;
    }

private:
    posix_spawn_file_actions_t _actions;
};

} // namespace

class OsProcessLinux final : public OsProcessImp
{
public:
    OsProcessLinux()
    {
        droppedChildren().prepare();
    }

    ~OsProcessLinux() override
    {
        if (_runs)
            droppedChildren().add(_child);
        else
            droppedChildren().forget();
    }

    void start(const char* const* argv)
    {
        const FileActions files;
        FileActions::check(argv[0] ? posix_spawnp(&_child, argv[0], files.get(), nullptr,
                                                  const_cast<char* const*>(argv), environ)
                                   : ENOENT);
        _runs = true;
    }

    void wait() override
    {
        if (!_runs) return;
        while (waitpid(_child, nullptr, 0) < 0 && errno == EINTR) continue;
        _runs = false;
    }

private:
    pid_t _child = 0;
    // True from the start until the end has been waited for.
    bool _runs = false;
};

ObjPtrRet<OsProcessImp> OsProcess::performStart(const char* const* argv)
{
    // Made before the child, so that no child runs without a record.
    ObjPtr<OsProcessLinux> child(new OsProcessLinux);
    child->start(argv);
    return ObjPtrRet<OsProcessImp>(child.release());
}

} // namespace Zu
