#include "zulog/zlNames.h"

#include <system_error>

namespace Zu
{

std::filesystem::path zlPathOf(const std::string& name)
{
    return {std::u8string(name.begin(), name.end())};
}

std::string zlNameOf(const std::filesystem::path& path)
{
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

std::string zlDirectoryOf(const std::string& name)
{
    const std::filesystem::path directory = zlPathOf(name).parent_path();
    return directory.empty() ? "." : zlNameOf(directory);
}

bool zlIsDirectory(const std::string& name)
{
    std::error_code ignored;
    return std::filesystem::is_directory(zlPathOf(name), ignored);
}

} // namespace Zu
