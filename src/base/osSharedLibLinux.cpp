#include "base/osSharedLib.h"

#include "base/exSystemCode.h"
#include "base/osSharedLibEx.h"

#include <cerrno>
#include <dlfcn.h>
#include <link.h>

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
        void* const function = name ? dlsym(_module, name) : nullptr;
        if (!function || !isOwn(function))
            throw OsSharedLibEx::ExFunctionNotFound(__FILE__, __LINE__, getPath().getChars(), name);
        return function;
    }

private:
    // The loader also looks into the libraries that this one needs; those have functions of their
    // own.
    bool isOwn(void* function) const
    {
        link_map* own = nullptr;
        link_map* found = nullptr;
        Dl_info info;
        return dlinfo(_module, RTLD_DI_LINKMAP, &own) == 0 &&
               dladdr1(function, &info, reinterpret_cast<void**>(&found), RTLD_DL_LINKMAP) != 0 &&
               found == own;
    }

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
