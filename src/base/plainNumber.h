/// @file
/// Numbers as the library writes them on streams.

#ifndef ZU_BASE_PLAINNUMBER_H
#define ZU_BASE_PLAINNUMBER_H

#include "baseApi.h"
#include "withoutNaNSign.h"

#include <iosfwd>
#include <type_traits>

namespace Zu
{

/// @{
/// Writes a number with the format of the stream, its width, fill character and precision
/// included, but with the point of the locale "C" and without grouping, whatever locale the stream
/// has. The stream's locale is left alone: another thread may be writing there.
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

/// A number that is written by no locale; see plainNumber().
template <class T> class PlainNumber
{
public:
    /// Of this value.
    explicit constexpr PlainNumber(T value) : _value(value) {}

    /// Writes it as writePlain() does.
    friend std::ostream& operator<<(std::ostream& os, const PlainNumber& number)
    {
        return writePlain(os, number._value);
    }

private:
    T _value;
};

/// The value as every text of the library has it, `os << plainNumber(seconds)`: by no locale, and a
/// NaN without a sign. What is no number stays as it is: it has an insertion operator of its own.
template <class T> constexpr auto plainNumber(const T& value)
{
    if constexpr (std::is_arithmetic_v<T>)
        return PlainNumber<T>(withoutNaNSign(value));
    else
        return value;
}

} // namespace Zu

#endif
