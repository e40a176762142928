#include "threadName.h"

#include <cstddef>
#include <windows.h>

std::string systemNameOfThread()
{
    using Function = HRESULT(WINAPI*)(HANDLE, PWSTR*);
    const auto function = reinterpret_cast<Function>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleA("kernelbase.dll"), "GetThreadDescription")));
    PWSTR name = nullptr;
    if (!function || FAILED(function(GetCurrentThread(), &name))) return "it can't be asked";
    std::string text(1000, '\0');
    const int length = WideCharToMultiByte(CP_UTF8, 0, name, -1, text.data(),
                                           static_cast<int>(text.size()), nullptr, nullptr);
    LocalFree(name);
    text.resize(static_cast<std::size_t>(length > 0 ? length - 1 : 0));
    return text;
}
