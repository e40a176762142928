/// @file
/// The format of a caller's stream, kept for it. Internal to the library.

#ifndef ZU_BASE_STREAMFORMAT_H
#define ZU_BASE_STREAMFORMAT_H

#include <ios>
#include <ostream>

namespace Zu
{

/// Puts flags, width and fill character of a stream back at its end, so that a report may set what
/// it needs.
class StreamFormat
{
public:
    explicit StreamFormat(std::ostream& os)
        : _os(os), _flags(os.flags()), _width(os.width()), _fill(os.fill())
    {
    }

    StreamFormat(const StreamFormat&) = delete;
    StreamFormat& operator=(const StreamFormat&) = delete;

    ~StreamFormat()
    {
        _os.flags(_flags);
        _os.width(_width);
        _os.fill(_fill);
    }

    /// Sets what a new stream has; whether each insertion is flushed stays.
    void setPlain()
    {
        _os.flags(std::ios_base::dec | std::ios_base::skipws | (_flags & std::ios_base::unitbuf));
        _os.width(0);
        _os.fill(' ');
    }

private:
    std::ostream& _os;
    std::ios_base::fmtflags _flags;
    std::streamsize _width;
    char _fill;
};

} // namespace Zu

#endif
