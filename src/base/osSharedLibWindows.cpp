#include "base/osSharedLib.h"

#include "base/exSystemCode.h"
#include "base/osSharedLibEx.h"

#include <windows.h>

namespace Zu
{

namespace
{

class OsSharedLibWindows final : public OsSharedLib
{
public:
    OsSharedLibWindows(const OsFilePath& path, HMODULE module) : OsSharedLib(path), _module(module)
    {
    }

    void* getFunction(const char* name) override
    {
        void* const function =
            name ? reinterpret_cast<void*>(GetProcAddress(_module, name)) : nullptr;
        if (!function)
            throw OsSharedLibEx::ExFunctionNotFound(__FILE__, __LINE__, getPath().getChars(), name);
        return function;
    }

private:
    const HMODULE _module;
};

} // namespace

ObjPtrRet<OsSharedLib> OsSharedLib::open(const OsFilePath& path)
{
    const HMODULE module = LoadLibraryA(path.getChars());
    if (!module)
    {
        char message[256];
        systemCodeText(lastSystemCode(), message, sizeof message);
        throw OsSharedLibEx::ExCantOpenLib(__FILE__, __LINE__, path.getChars(), message);
    }
    return ObjPtrRet<OsSharedLib>(new OsSharedLibWindows(path, module));
}

const char* OsSharedLib::getSuffix()
{
    return ".dll";
}

} // namespace Zu
