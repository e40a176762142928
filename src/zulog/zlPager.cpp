#include "zulog/zlPager.h"

#include "zulog/zlPlatform.h"

#include <algorithm>
#include <cstdlib>

namespace Zu
{

namespace
{

// Whether it stands for itself in the shells of both platforms.
bool isPlain(char c)
{
    constexpr std::string_view OTHERS = "_-+./:\\";
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
           OTHERS.find(c) != std::string_view::npos;
}

} // namespace

std::string zlProgramOf(std::string_view command)
{
    constexpr std::string_view BLANKS = " \t";
    const std::size_t begin = std::min(command.find_first_not_of(BLANKS), command.size());
    command.remove_prefix(begin);
    const std::string_view word = command.substr(0, command.find_first_of(BLANKS));
    return std::all_of(word.begin(), word.end(), isPlain) ? std::string(word) : std::string();
}

std::FILE* zlOpenPager(ZlReports& reports)
{
    const char* const named = std::getenv("PAGER");
    const bool isNamed = named && *named != '\0';
    const std::string command = isNamed ? named : ZlPlatform::getUsualPager();
    if (command.empty()) return nullptr;
    const std::string program = zlProgramOf(command);
    if (program.empty() || ZlPlatform::hasProgram(program)) return ZlPlatform::openPager(command);
    if (isNamed) reports.note("there is no pager \"" + program + "\", so none is started");
    return nullptr;
}

} // namespace Zu
