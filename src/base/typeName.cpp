#include "base/typeName.h"

#include <cstdlib>
#include <cxxabi.h>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <typeindex>

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

struct NameTable
{
    std::mutex _lock;
    std::map<std::type_index, std::string> _names;
};

// Never destroyed: names are asked for until the last static object of the process is gone.
NameTable& nameTable()
{
    static NameTable* const table = new NameTable;
    return *table;
}

} // namespace

const char* typeName(const std::type_info& type)
{
    NameTable& table = nameTable();
    const std::lock_guard<std::mutex> guard(table._lock);
    const auto found = table._names.find(type);
    if (found != table._names.end()) return found->second.c_str();
    return table._names.emplace(type, demangled(type.name())).first->second.c_str();
}

} // namespace Zu
