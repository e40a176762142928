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

} // namespace support
