// One of several processes that use a lock. The variable LOCK_NAME contains the lock's name, so
// that any name arrives unchanged, and LOCK_DIR the directory of the files by which the processes
// communicate; the argument selects the action.

#include "base/exSysError.h"
#include "base/lgInterProcessLock.h"
#include "base/objPtr.h"
#include "base/osEnv.h"
#include "support/marker.h"

#include <cstdlib>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <string>

namespace
{

using Zu::LgInterProcessLock;

constexpr int SUCCESS = 0;
constexpr int NO_ANSWER = 2;
constexpr int RAISED = 3;

std::string variable(const char* name)
{
    const char* const value = Zu::OsEnv::getVariable(name);
    return value ? value : "";
}

std::string file(const char* name)
{
    return variable("LOCK_DIR") + "/" + name;
}

LgInterProcessLock* createLock()
{
    return LgInterProcessLock::create(variable("LOCK_NAME").c_str());
}

int hold()
{
    const Zu::ObjPtr<LgInterProcessLock> lock(createLock());
    const Zu::LgInterProcessLockGuard guard(lock.get());
    support::setMarker(file("held"));
    if (!support::awaitMarker(file("go"))) return NO_ANSWER;
    support::setMarker(file("leaving"));
    return SUCCESS;
}

// Ends without a chance to release the lock, which it holds twice.
int die()
{
    LgInterProcessLock* const lock = createLock();
    lock->lock();
    lock->lock();
    support::setMarker(file("held"));
    std::_Exit(support::awaitMarker(file("go")) ? SUCCESS : NO_ANSWER);
}

// Increments the number in a file, with a new lock object for each step.
int count()
{
    support::setMarker(file("held"));
    if (!support::awaitMarker(file("go"))) return NO_ANSWER;
    for (int i = 0; i < std::stoi(variable("LOCK_ROUNDS")); ++i)
    {
        const Zu::ObjPtr<LgInterProcessLock> lock(createLock());
        const Zu::LgInterProcessLockGuard guard(lock.get());
        int number = 0;
        std::ifstream(file("number")) >> number;
        std::ofstream(file("number")) << number + 1;
    }
    return SUCCESS;
}

} // namespace

int main(int argc, char** argv)
{
    const std::map<std::string, std::function<int()>> modes = {
        {"hold", hold}, {"die", die}, {"count", count}};
    try
    {
        return modes.at(argc > 1 ? argv[1] : "")();
    }
    catch (const Zu::ExSysErrorWindows& exception)
    {
        std::cerr << exception.getReason() << std::endl;
        return RAISED;
    }
}
