/// @file
/// What zulog reports on standard error.

#ifndef ZU_ZULOG_ZLREPORTS_H
#define ZU_ZULOG_ZLREPORTS_H

#include <cstdint>
#include <iosfwd>
#include <map>
#include <string>
#include <string_view>

namespace Zu
{

/// Writes one line for each thing that is wrong with the input. Of one file, only the first ten
/// lines are reported one by one; endReports() says how many more there were. Control characters
/// in names are escaped.
///
/// Not thread-safe.
class ZlReports
{
public:
    explicit ZlReports(std::ostream& out) : _out(out) {}

    /// `zulog: REASON`. A file or a command that can't be used; the exit value will be 1.
    void failed(std::string_view reason);

    /// `zulog: FILE:LINE: REASON`.
    void wrongLine(const std::string& file, std::uint64_t line, std::string_view reason);

    /// `zulog: REASON`, without an effect on the exit value.
    void note(std::string_view reason);

    /// `zulog: FILE: 17 more lines like these` for each file that has more.
    void endReports();

    /// Whether failed() was called.
    bool hasFailed() const
    {
        return _hasFailed;
    }

private:
    std::ostream& _out;
    std::map<std::string, std::uint64_t> _lines;
    bool _hasFailed = false;
};

} // namespace Zu

#endif
