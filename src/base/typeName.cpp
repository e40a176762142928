#include "base/typeName.h"

#include <cstdlib>
#include <cxxabi.h>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

namespace Zu
{

namespace
{

std::string demangled(const char* name)
{
    int status = 0;
    const std::unique_ptr<char, void (*)(void*)> text(
        abi::__cxa_demangle(name, nullptr, nullptr, &status), &std::free);
    return text ? text.get() : name;
}

// Keyed by a copy of the runtime's name: a module that is unloaded takes its type_info with it.
struct NameTable
{
    std::mutex _lock;
    std::map<std::string, std::string, std::less<>> _names;
};

// Never destroyed: names are asked for until the last static object of the process is gone.
NameTable& nameTable()
{
    static NameTable* const table = new NameTable;
    return *table;
}

const char* internedName(const char* name)
{
    NameTable& table = nameTable();
    const std::lock_guard<std::mutex> guard(table._lock);
    const auto found = table._names.find(std::string_view(name));
    if (found != table._names.end()) return found->second.c_str();
    return table._names.emplace(name, demangled(name)).first->second.c_str();
}

} // namespace

const char* typeName(const std::type_info& type) noexcept
{
    try
    {
        return internedName(type.name());
    }
    catch (...)
    {
        // Without memory the runtime's own form has to do.
        return type.name();
    }
}

} // namespace Zu
