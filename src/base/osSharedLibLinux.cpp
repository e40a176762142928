#include "base/osSharedLib.h"

#include "base/exSystemCode.h"
#include "base/osSharedLibEx.h"

#include <cerrno>
#include <dlfcn.h>

namespace Zu
{

namespace
{

class OsSharedLibLinux final : public OsSharedLib
{
public:
    OsSharedLibLinux(const OsFilePath& path, void* module) : OsSharedLib(path), _module(module) {}

    void* getFunction(const char* name) override
    {
        void* const function = dlsym(_module, name);
        if (!function)
            throw OsSharedLibEx::ExFunctionNotFound(__FILE__, __LINE__, getPath().getChars(), name);
        return function;
    }

private:
    void* const _module;
};

// The loader takes an empty name for the program itself, which is no library.
void* openModule(const OsFilePath& path)
{
    return path.isEmpty() ? nullptr : dlopen(path.getChars(), RTLD_NOW | RTLD_LOCAL);
}

} // namespace

ObjPtrRet<OsSharedLib> OsSharedLib::open(const OsFilePath& path)
{
    void* const module = openModule(path);
    if (!module)
    {
        char noName[256];
        systemCodeText(ENOENT, noName, sizeof noName);
        const char* const message = path.isEmpty() ? noName : dlerror();
        throw OsSharedLibEx::ExCantOpenLib(__FILE__, __LINE__, path.getChars(), message);
    }
    return ObjPtrRet<OsSharedLib>(new OsSharedLibLinux(path, module));
}

const char* OsSharedLib::getSuffix()
{
    return ".so";
}

} // namespace Zu
