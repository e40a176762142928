/// @file
/// Where zulog writes to.

#ifndef ZU_ZULOG_ZLOUTPUT_H
#define ZU_ZULOG_ZLOUTPUT_H

#include <cstddef>
#include <cstdio>
#include <string>
#include <string_view>

namespace Zu
{

/// Collects text and writes it in large pieces. Not thread-safe.
class ZlOutput
{
public:
    /// What the reader of a pipe has closed: the program then ends as if all was written.
    class Closed
    {
    };

    /// Standard output, or a pager.
    explicit ZlOutput(std::FILE* file) : _file(file) {}

    /// Text to append to; write() takes it from time to time.
    std::string& text()
    {
        return _text;
    }

    /// Writes the text if there is much of it, or in any case. Raises ZlError if it can't be
    /// written, and Closed.
    void writeIfLarge()
    {
        if (_text.size() >= LARGE) write();
    }
    void write();

private:
    static constexpr std::size_t LARGE = std::size_t{64} * 1024;
    std::FILE* const _file;
    std::string _text;
};

} // namespace Zu

#endif
