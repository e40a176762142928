/// @file
/// Formatted output that depends on no locale. Internal to the library.

#ifndef ZU_BASE_PLAINNUMERALS_H
#define ZU_BASE_PLAINNUMERALS_H

#include <string>

namespace Zu
{

/// As long as it lives, `snprintf()` and its like write numbers on the calling thread as the locale
/// "C" has them, whatever `setlocale()` was called with. Where that is so anyway it does nothing.
/// For formats that a client gives; the library's own numbers are written without any locale.
///
/// Thread-safety: on Linux other threads do not notice. On Windows the process has one locale, and
/// they do, as with each number that a standard stream writes there.
class PlainNumerals
{
public:
    PlainNumerals();
    PlainNumerals(const PlainNumerals&) = delete;
    PlainNumerals& operator=(const PlainNumerals&) = delete;
    ~PlainNumerals();

private:
    // What the halves need to put the former state back.
    bool _isSet = false;
    void* _own = nullptr;
    void* _former = nullptr;
    std::string _formerName;
};

} // namespace Zu

#endif
