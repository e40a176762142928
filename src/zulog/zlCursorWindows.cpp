#include "app/lgServiceFile.h"
#include "zulog/zlCursor.h"
#include "zulog/zlFormat.h"
#include "zulog/zlNames.h"

#include <windows.h>

namespace Zu
{

namespace
{

[[noreturn]] void fail(const std::string& name, const std::string& what)
{
    std::string text = "\"";
    zlAppendPrintable(text, name, false);
    throw ZlError(text + "\" " + what);
}

[[noreturn]] void failWith(const std::string& name, const char* what, DWORD error)
{
    fail(name, std::string("can't be ") + what + ": " +
                   LgServiceFile::errorText(static_cast<int>(error)));
}

HANDLE openFile(const std::string& name, DWORD access, DWORD sharing, DWORD creation)
{
    return CreateFileW(zlPathOf(name).c_str(), access, sharing, nullptr, creation,
                       FILE_ATTRIBUTE_NORMAL, nullptr);
}

} // namespace

// A file that nobody else can open meanwhile.
ZlCursorFile::ZlCursorFile(const std::string& name) : _name(name)
{
    const HANDLE handle = openFile(name + ".lock", GENERIC_READ | GENERIC_WRITE, 0, OPEN_ALWAYS);
    _lock = reinterpret_cast<std::intptr_t>(handle);
    if (handle != INVALID_HANDLE_VALUE) return;
    const DWORD error = GetLastError();
    if (error == ERROR_SHARING_VIOLATION) fail(name, "is the cursor of another zulog that runs");
    failWith(name, "locked", error);
}

ZlCursorFile::~ZlCursorFile()
{
    CloseHandle(reinterpret_cast<HANDLE>(_lock));
}

std::optional<std::string> ZlCursorFile::read() const
{
    const HANDLE handle = openFile(_name, GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING);
    if (handle == INVALID_HANDLE_VALUE)
    {
        const DWORD error = GetLastError();
        if (error == ERROR_FILE_NOT_FOUND) return std::nullopt;
        failWith(_name, "opened", error);
    }
    std::string text(LARGEST + 1, '\0');
    DWORD size = 0;
    const bool isRead =
        ReadFile(handle, text.data(), static_cast<DWORD>(text.size()), &size, nullptr) != 0;
    const DWORD error = GetLastError();
    CloseHandle(handle);
    if (!isRead) failWith(_name, "read", error);
    if (size > LARGEST) fail(_name, "is no cursor of zulog");
    text.resize(size);
    return text;
}

void ZlCursorFile::replace(std::string_view text)
{
    const std::string temporary = _name + ".new";
    const HANDLE handle = openFile(temporary, GENERIC_WRITE, 0, CREATE_ALWAYS);
    if (handle == INVALID_HANDLE_VALUE) failWith(temporary, "written", GetLastError());
    DWORD size = 0;
    const bool isWritten =
        WriteFile(handle, text.data(), static_cast<DWORD>(text.size()), &size, nullptr) != 0 &&
        FlushFileBuffers(handle) != 0;
    const DWORD error = GetLastError();
    CloseHandle(handle);
    if (!isWritten) failWith(temporary, "written", error);
    constexpr DWORD REPLACED = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
    if (!MoveFileExW(zlPathOf(temporary).c_str(), zlPathOf(_name).c_str(), REPLACED))
        failWith(_name, "written", GetLastError());
}

} // namespace Zu
