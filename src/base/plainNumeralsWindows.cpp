#include "base/plainNumerals.h"

#include <clocale>
#include <cstring>

namespace Zu
{

PlainNumerals::PlainNumerals()
{
    const std::lconv* const conventions = std::localeconv();
    if (std::strcmp(conventions->decimal_point, ".") == 0 && *conventions->thousands_sep == '\0')
        return;
    _formerName = std::setlocale(LC_NUMERIC, nullptr);
    std::setlocale(LC_NUMERIC, "C");
    _isSet = true;
}

PlainNumerals::~PlainNumerals()
{
    if (_isSet) std::setlocale(LC_NUMERIC, _formerName.c_str());
}

} // namespace Zu
