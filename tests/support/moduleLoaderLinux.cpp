#include "support/moduleLoader.h"

#include <cstdlib>
#include <dlfcn.h>
#include <iostream>

namespace support
{

Module Module::load(const std::string& path)
{
    void* const handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle) return Module(handle);
    std::cerr << dlerror() << std::endl;
    std::exit(70);
}

void* Module::symbol(const char* name) const
{
    return dlsym(_handle, name);
}

bool Module::unload(const char* anySymbol)
{
    void* const code = symbol(anySymbol);
    Dl_info info;
    dlclose(_handle);
    return dladdr(code, &info) == 0;
}

} // namespace support
