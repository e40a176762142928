/// @file
/// Numbers as the library writes them to streams.

#ifndef ZU_BASE_PLAINNUMBER_H
#define ZU_BASE_PLAINNUMBER_H

#include "baseApi.h"
#include "withoutNaNSign.h"

#include <iosfwd>
#include <type_traits>

namespace Zu
{

/// @{
/// Writes a number in the format of the stream, including its width, fill character and precision,
/// but with the decimal point of the locale "C" and without grouping, whatever the stream's locale.
/// That locale is left unchanged, since another thread may be writing.
ZU_BASE_API std::ostream& writePlain(std::ostream& os, short value);
ZU_BASE_API std::ostream& writePlain(std::ostream& os, unsigned short value);
ZU_BASE_API std::ostream& writePlain(std::ostream& os, int value);
ZU_BASE_API std::ostream& writePlain(std::ostream& os, unsigned int value);
ZU_BASE_API std::ostream& writePlain(std::ostream& os, long value);
ZU_BASE_API std::ostream& writePlain(std::ostream& os, unsigned long value);
ZU_BASE_API std::ostream& writePlain(std::ostream& os, long long value);
ZU_BASE_API std::ostream& writePlain(std::ostream& os, unsigned long long value);
ZU_BASE_API std::ostream& writePlain(std::ostream& os, float value);
ZU_BASE_API std::ostream& writePlain(std::ostream& os, double value);
/// @}

/// A number that is written independently of locales; see plainNumber().
template <class T> class PlainNumber
{
public:
    /// For this value.
    explicit constexpr PlainNumber(T value) : _value(value) {}

    /// Writes it as writePlain() does.
    friend std::ostream& operator<<(std::ostream& os, const PlainNumber& number)
    {
        return writePlain(os, number._value);
    }

private:
    T _value;
};

/// The value in the form of every text of the library, `os << plainNumber(seconds)`: independent of
/// locales, and with NaNs without a sign. A value that is not a number is returned unchanged, since
/// it has an insertion operator of its own.
template <class T> constexpr auto plainNumber(const T& value)
{
    if constexpr (std::is_arithmetic_v<T>)
        return PlainNumber<T>(withoutNaNSign(value));
    else
        return value;
}

} // namespace Zu

#endif
