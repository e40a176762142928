/// @file
/// The stream in which the library builds its texts.

#ifndef ZU_BASE_PLAINTEXTSTREAM_H
#define ZU_BASE_PLAINTEXTSTREAM_H

#include <locale>
#include <sstream>

namespace Zu
{

/// A string stream whose text depends on no locale: it has the locale "C", whatever
/// `std::locale::global()` was set to.
class PlainTextStream : public std::ostringstream
{
public:
    /// Empty.
    PlainTextStream()
    {
        imbue(std::locale::classic());
    }
};

} // namespace Zu

#endif
