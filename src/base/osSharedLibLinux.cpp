#include "base/osSharedLib.h"

#include "base/exSystemCode.h"
#include "base/osSharedLibEx.h"
#include "base/osSymbolTable.h"

#include <cerrno>
#include <cstdint>
#include <dlfcn.h>
#include <link.h>

namespace Zu
{

namespace
{

static_assert(sizeof(OsElfSymbol) == sizeof(ElfW(Sym)));

OsSymbolTable symbolsOf(const link_map& library)
{
    OsSymbolTable table;
    // Most loaders turn the offsets in a library into addresses.
    const auto at = [&library](ElfW(Addr) place) {
        return reinterpret_cast<const void*>(place < library.l_addr ? library.l_addr + place
                                                                    : place);
    };
    for (const ElfW(Dyn)* entry = library.l_ld; entry->d_tag != DT_NULL; ++entry)
        switch (entry->d_tag)
        {
        case DT_STRTAB:
            table._names = static_cast<const char*>(at(entry->d_un.d_ptr));
            break;
        case DT_SYMTAB:
            table._symbols = static_cast<const OsElfSymbol*>(at(entry->d_un.d_ptr));
            break;
        case DT_HASH:
            table._hash = static_cast<const std::uint32_t*>(at(entry->d_un.d_ptr));
            break;
        case DT_GNU_HASH:
            table._gnuHash = static_cast<const std::uint32_t*>(at(entry->d_un.d_ptr));
            break;
        }
    return table;
}

class OsSharedLibLinux final : public OsSharedLib
{
public:
    OsSharedLibLinux(const OsFilePath& path, void* module) : OsSharedLib(path), _module(module) {}

    void* getFunction(const char* name) override
    {
        void* const function = name ? dlsym(_module, name) : nullptr;
        if (!function || !isOwn(function, name))
            throw OsSharedLibEx::ExFunctionNotFound(__FILE__, __LINE__, getPath().getChars(), name);
        return function;
    }

private:
    // The loader also searches the libraries that this one depends on, but their functions are
    // their own. An indirect function of this one may be anywhere, even in the kernel's own
    // library.
    bool isOwn(void* function, const char* name) const
    {
        link_map* own = nullptr;
        if (dlinfo(_module, RTLD_DI_LINKMAP, &own) != 0) return false;
        link_map* found = nullptr;
        Dl_info info;
        const bool isFound =
            dladdr1(function, &info, reinterpret_cast<void**>(&found), RTLD_DL_LINKMAP) != 0;
        return (isFound && found == own) || osDefines(symbolsOf(*own), name);
    }

    void* const _module;
};

// The loader takes an empty name to mean the program itself, which is not a library.
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
