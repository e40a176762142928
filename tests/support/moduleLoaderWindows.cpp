#include "support/moduleLoader.h"

#include <cstdlib>
#include <iostream>
#include <windows.h>

namespace support
{

Module Module::load(const std::string& path)
{
    const HMODULE handle = LoadLibraryA(path.c_str());
    if (handle) return Module(handle);
    std::cerr << path << ": error " << GetLastError() << std::endl;
    std::exit(70);
}

void* Module::symbol(const char* name) const
{
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(_handle), name));
}

bool Module::unload(const char* anySymbol)
{
    void* const code = symbol(anySymbol);
    FreeLibrary(static_cast<HMODULE>(_handle));
    HMODULE module = nullptr;
    return !GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                                   GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                               static_cast<const char*>(code), &module);
}

} // namespace support
