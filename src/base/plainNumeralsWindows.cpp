#include "base/plainNumerals.h"

#include <clocale>
#include <cstring>
#include <mutex>

namespace Zu
{

namespace
{

// Two at once would take each other's change for the process's own locale. Made at its first use
// and kept: statements trace before main and after it.
std::recursive_mutex& changing()
{
    static auto* const theMutex = new std::recursive_mutex;
    return *theMutex;
}

} // namespace

PlainNumerals::PlainNumerals()
{
    std::unique_lock<std::recursive_mutex> lock(changing());
    const std::lconv* const conventions = std::localeconv();
    _isSet =
        std::strcmp(conventions->decimal_point, ".") != 0 || *conventions->thousands_sep != '\0';
    if (_isSet)
    {
        _formerName = std::setlocale(LC_NUMERIC, nullptr);
        std::setlocale(LC_NUMERIC, "C");
    }
    // The destructor unlocks it.
    lock.release();
}

PlainNumerals::~PlainNumerals()
{
    if (_isSet) std::setlocale(LC_NUMERIC, _formerName.c_str());
    changing().unlock();
}

} // namespace Zu
