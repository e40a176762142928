#include "base/typeName.h"

#include "base/compilerSupport.h"

#include <map>
#include <mutex>
#include <string>
#include <string_view>

namespace Zu
{

namespace
{

// Keyed by a copy of the runtime's name: the type_info of an unloaded module goes with it.
struct NameTable
{
    std::mutex _lock;
    std::map<std::string, std::string, std::less<>> _names;
};

// Never destroyed: names are requested until the last static object of the process is gone.
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
    return table._names.emplace(name, Compiler::demangled(name)).first->second.c_str();
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
        // Without memory, the runtime's own form is used.
        return type.name();
    }
}

} // namespace Zu
