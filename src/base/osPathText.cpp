#include "base/osPathText.h"

#include <algorithm>
#include <vector>

namespace Zu
{

namespace
{

// Applies the elements of a path to those collected so far.
void applyElements(std::vector<std::string_view>& elements, std::string_view path)
{
    while (!path.empty())
    {
        const std::size_t end = std::min(path.find('/'), path.size());
        const std::string_view element = path.substr(0, end);
        path.remove_prefix(std::min(end + 1, path.size()));
        if (element.empty() || element == ".") continue;
        if (element != "..")
            elements.push_back(element);
        else if (!elements.empty())
            elements.pop_back();
    }
}

} // namespace

bool osIsAbsoluteWithDrive(std::string_view path)
{
    return path.size() >= 3 && (path[1] == ':' || (path[0] == '\\' && path[1] == '\\'));
}

bool osIsAbsoluteWithoutDrive(std::string_view path)
{
    return !path.empty() && path[0] == '/';
}

std::string osConcatenate(std::string_view base, std::string_view element, char separator)
{
    std::string path(base);
    if (!path.empty() && path.back() != separator) path += separator;
    path += element;
    return path;
}

std::string osDirectoryName(std::string_view fullPath, std::string_view given, char separator,
                            std::string_view root)
{
    if (given == "." || given == "..") return std::string(fullPath);
    const std::size_t end = fullPath.rfind(separator);
    if (end == std::string_view::npos) return std::string(fullPath);
    return std::string(end == 0 ? root : fullPath.substr(0, end));
}

std::string_view osExtension(std::string_view baseName)
{
    const std::size_t point = baseName.rfind('.');
    return point == std::string_view::npos ? std::string_view() : baseName.substr(point + 1);
}

std::string osLexicalFullPath(std::string_view currentDir, std::string_view path)
{
    std::vector<std::string_view> elements;
    if (!osIsAbsoluteWithoutDrive(path)) applyElements(elements, currentDir);
    applyElements(elements, path);

    std::string full;
    for (const std::string_view element : elements)
    {
        full += '/';
        full += element;
    }
    const bool endsInSeparator = !path.empty() && path.back() == '/';
    if (full.empty() || endsInSeparator) full += '/';
    return full;
}

namespace
{

// Whether this is "\\\\server\\share", or less.
bool isShare(std::string_view path, const char* separators)
{
    if (path.size() < 2 || path.find_first_not_of(separators) != 2) return false;
    const std::size_t server = path.find_first_of(separators, 2);
    if (server == std::string_view::npos) return true;
    const std::size_t share = path.find_first_not_of(separators, server);
    return path.find_first_of(separators, share) == std::string_view::npos;
}

} // namespace

bool osEndsInName(std::string_view path, char separator)
{
    const char separators[] = {separator, '/', '\0'};
    const bool hasDrives = separator == '\\';
    const std::size_t last = path.find_last_not_of(separators);
    if (last == std::string_view::npos) return false;
    path = path.substr(0, last + 1);
    // Without any separator, the whole path.
    std::string_view element = path.substr(path.find_last_of(separators) + 1);
    if (!hasDrives) return element != "." && element != "..";
    if (isShare(path, separators)) return false;
    if (element.size() >= 2 && element[1] == ':') element.remove_prefix(2);
    return element.find_first_not_of(". ") != std::string_view::npos;
}

} // namespace Zu
