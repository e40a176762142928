#include "base/plainNumerals.h"

#include <clocale>
#include <cstring>
#include <langinfo.h>

namespace Zu
{

PlainNumerals::PlainNumerals()
{
    if (std::strcmp(nl_langinfo(RADIXCHAR), ".") == 0 && *nl_langinfo(THOUSEP) == '\0') return;
    // The other categories are kept: one of them converts wide characters in a text.
    const locale_t copy = duplocale(uselocale(nullptr));
    if (!copy) return;
    const locale_t own = newlocale(LC_NUMERIC_MASK, "C", copy);
    if (!own)
    {
        freelocale(copy);
        return;
    }
    _own = own;
    _former = uselocale(own);
    _isSet = true;
}

PlainNumerals::~PlainNumerals()
{
    if (!_isSet) return;
    uselocale(static_cast<locale_t>(_former));
    freelocale(static_cast<locale_t>(_own));
}

} // namespace Zu
