#include "zulog/zlPlatform.h"

#include "app/lgMapFile.h"
#include "app/lgServiceFile.h"
#include "zulog/zlFile.h"
#include "zulog/zlNames.h"

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <io.h>
#include <sys/stat.h>
#include <windows.h>

#include <shellapi.h>

namespace Zu
{

// Those of main() are in the code page of the system.
std::vector<std::string> ZlPlatform::getWords(int, char**)
{
    int count = 0;
    wchar_t** const words = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> result;
    for (int i = 1; words && i < count; ++i)
    {
        const int size =
            WideCharToMultiByte(CP_UTF8, 0, words[i], -1, nullptr, 0, nullptr, nullptr);
        std::string word(static_cast<std::size_t>(size > 0 ? size : 1), '\0');
        WideCharToMultiByte(CP_UTF8, 0, words[i], -1, word.data(), size, nullptr, nullptr);
        word.pop_back();
        result.push_back(std::move(word));
    }
    LocalFree(words);
    return result;
}

void ZlPlatform::prepare()
{
    _setmode(_fileno(stdout), _O_BINARY);
    SetConsoleOutputCP(CP_UTF8);
    const HANDLE console = GetStdHandle(STD_OUTPUT_HANDLE);
    DWORD mode = 0;
    // So that it takes colours.
    if (GetConsoleMode(console, &mode))
        SetConsoleMode(console, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

std::size_t ZlPlatform::getFileLimit()
{
    // Of handles there can be millions.
    return std::size_t{1} << 16;
}

bool ZlPlatform::isTerminal(std::FILE* file)
{
    DWORD mode = 0;
    return GetConsoleMode(reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(file))), &mode) != 0;
}

std::string ZlPlatform::getUsualPager()
{
    return {};
}

bool ZlPlatform::hasProgram(const std::string& name)
{
    for (const char* const ending : {".exe", ".com", ".bat", ".cmd"})
        if (SearchPathA(nullptr, name.c_str(), ending, 0, nullptr, nullptr) > 0) return true;
    return false;
}

std::FILE* ZlPlatform::openPager(const std::string& command)
{
    return _popen(command.c_str(), "wb");
}

bool ZlPlatform::closePager(std::FILE* pager)
{
    _pclose(pager);
    return true;
}

std::FILE* ZlPlatform::openToWrite(const std::string& name, bool isNew, std::string& reason)
{
    const std::filesystem::path path = zlPathOf(name);
    const int how = _O_WRONLY | _O_CREAT | _O_BINARY | _O_NOINHERIT | (isNew ? _O_EXCL : _O_TRUNC);
    const int descriptor = _wopen(path.c_str(), how, _S_IREAD | _S_IWRITE);
    if (descriptor >= 0) return _fdopen(descriptor, "wb");
    reason = LgServiceFile::errorText(static_cast<int>(GetLastError()));
    return nullptr;
}

std::int64_t ZlPlatform::getNow()
{
    return lgWallClock();
}

} // namespace Zu
