#include "zulog/zlReports.h"

#include "zulog/zlFormat.h"

#include <ostream>

namespace Zu
{

namespace
{

constexpr std::uint64_t MOST_LINES = 10;

void writeLine(std::ostream& out, std::string_view text)
{
    std::string line = "zulog: ";
    zlAppendPrintable(line, text, false);
    out << line << std::endl;
}

} // namespace

void ZlReports::failed(std::string_view reason)
{
    _hasFailed = true;
    writeLine(_out, reason);
}

void ZlReports::wrongLine(const std::string& file, std::uint64_t line, std::string_view reason)
{
    if (++_lines[file] > MOST_LINES) return;
    writeLine(
        _out,
        std::string(file).append(":").append(std::to_string(line)).append(": ").append(reason));
}

void ZlReports::note(std::string_view reason)
{
    writeLine(_out, reason);
}

void ZlReports::endReports()
{
    for (const auto& [file, count] : _lines)
    {
        if (count <= MOST_LINES) continue;
        const std::uint64_t more = count - MOST_LINES;
        writeLine(_out, file + ": " + std::to_string(more) +
                            (more == 1 ? " more line like these" : " more lines like these"));
    }
    _lines.clear();
}

} // namespace Zu
