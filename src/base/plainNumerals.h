/// @file
/// Formatted output that depends on no locale. Internal to the library.

#ifndef ZU_BASE_PLAINNUMERALS_H
#define ZU_BASE_PLAINNUMERALS_H

#include <string>

namespace Zu
{

/// While an object of this class exists, `snprintf()` and the like write numbers on the calling
/// thread as in the locale "C", whatever `setlocale()` was called with. Does nothing if they do so
/// anyway. It is for formats that a client gives; the library's own numbers are written without any
/// locale.
///
/// Thread-safety: on Linux other threads are not affected. On Windows the process has one locale,
/// so they are, as they are by each number that a standard stream writes there. There, only one
/// thread at a time has such objects: they are meant for the length of one call.
class PlainNumerals
{
public:
    PlainNumerals();
    PlainNumerals(const PlainNumerals&) = delete;
    PlainNumerals& operator=(const PlainNumerals&) = delete;
    ~PlainNumerals();

private:
    // What the platform halves need to restore the former state.
    bool _isSet = false;
    void* _own = nullptr;
    void* _former = nullptr;
    std::string _formerName;
};

} // namespace Zu

#endif
