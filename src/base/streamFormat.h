/// @file
/// Saves the format of a caller's stream. Internal to the library.

#ifndef ZU_BASE_STREAMFORMAT_H
#define ZU_BASE_STREAMFORMAT_H

#include <ios>
#include <ostream>

namespace Zu
{

/// Restores flags, width and fill character of a stream when it is destroyed, so that a report may
/// set what it needs.
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

    /// Sets the format of a new stream; whether each insertion is flushed is left unchanged.
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
