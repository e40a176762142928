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

} // namespace support
