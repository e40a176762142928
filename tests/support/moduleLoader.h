// Loads a shared module at run time, for tests of what happens at its boundary.

#ifndef ZU_TESTS_MODULELOADER_H
#define ZU_TESTS_MODULELOADER_H

#include <string>

namespace support
{

// A loaded module; it stays loaded until the process ends, unless unload() is called.
class Module
{
public:
    // Loads the file; if that fails, prints why and ends the process.
    static Module load(const std::string& path);

    // The address of an exported symbol; null when there is none.
    void* symbol(const char* name) const;

    // Unloads the module; returns whether it is gone, together with the symbol.
    bool unload(const char* anySymbol);

private:
    explicit Module(void* handle) : _handle(handle) {}

    void* _handle;
};

} // namespace support

#endif
