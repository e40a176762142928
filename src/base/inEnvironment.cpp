#include "base/inEnvironment.h"

#include <cstring>
#include <ostream>
#include <string_view>

namespace Zu
{

InEnvironment::InEnvironment(const char* const* entries, std::ostream& messages)
{
    for (; entries && *entries; ++entries)
    {
        const char* const separator = std::strchr(*entries, '=');
        if (separator)
            _values[std::string(*entries, separator)] = separator + 1;
        else
            messages << "Skipping over Environment Variable: " << *entries << std::endl;
    }
}

const char* InEnvironment::find(const char* name) const
{
    if (!name) return nullptr;
    const auto found = _values.find(std::string_view(name));
    return found != _values.end() ? found->second.c_str() : nullptr;
}

} // namespace Zu
