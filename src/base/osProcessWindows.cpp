#include "base/osProcess.h"

#include "base/exSysError.h"
#include "base/osCommandLine.h"

#include <string>
#include <windows.h>

namespace Zu
{

namespace
{

class OsProcessWindows final : public OsProcessImp
{
public:
    explicit OsProcessWindows(const PROCESS_INFORMATION& process) : _process(process) {}

    ~OsProcessWindows() override
    {
        CloseHandle(_process.hThread);
        CloseHandle(_process.hProcess);
    }

    void wait() override
    {
        WaitForSingleObject(_process.hProcess, INFINITE);
    }

private:
    PROCESS_INFORMATION _process;
};

} // namespace

ObjPtrRet<OsProcessImp> OsProcess::performStart(const char* const* argv)
{
    // The call may write into the line.
    std::string line = osCommandLine(argv);
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    if (!CreateProcessA(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                        &startup, &process))
        throw ExSysErrorWindows(__FILE__, __LINE__);
    return ObjPtrRet<OsProcessImp>(new OsProcessWindows(process));
}

} // namespace Zu
