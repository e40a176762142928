// Loads a shared module at run time, for tests of what happens at its boundary.

#ifndef ZU_TESTS_MODULELOADER_H
#define ZU_TESTS_MODULELOADER_H

#include <string>

namespace support
{

// A loaded module; it stays loaded to the end of the process, unless it is unloaded.
class Module
{
public:
    // Loads the file; prints why and ends the process when that fails.
    static Module load(const std::string& path);

    // The address of an exported symbol; null when there is none.
    void* symbol(const char* name) const;

    // Takes the module out of the process; returns whether it is gone, with it the symbol.
    bool unload(const char* anySymbol);

private:
    explicit Module(void* handle) : _handle(handle) {}

    void* _handle;
};

} // namespace support

#endif
