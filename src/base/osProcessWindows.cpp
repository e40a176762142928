#include "base/osProcess.h"

#include "base/exRaise.h"
#include "base/osCommandLine.h"

#include <string>
#include <windows.h>

namespace Zu
{

class OsProcessWindows final : public OsProcessImp
{
public:
    ~OsProcessWindows() override
    {
        if (_process.hThread) CloseHandle(_process.hThread);
        if (_process.hProcess) CloseHandle(_process.hProcess);
    }

    void wait() override
    {
        WaitForSingleObject(_process.hProcess, INFINITE);
    }

    PROCESS_INFORMATION _process{};
};

ObjPtrRet<OsProcessImp> OsProcess::performStart(const char* const* argv)
{
    // Made before the child, so that no child runs without a record.
    ObjPtr<OsProcessWindows> child(new OsProcessWindows);
    // The call may modify the line.
    std::string line = osCommandLine(argv);
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    if (!CreateProcessA(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                        &startup, &child->_process))
        ZU_RAISE_LAST_ERROR();
    return ObjPtrRet<OsProcessImp>(child.release());
}

} // namespace Zu
