#include "base/lgBaseText.h"

#include "base/dtRefTime.h"
#include "base/dtTime.h"
#include "base/dtTimeMark.h"
#include "base/exBase.h"
#include "base/lgStream.h"
#include "base/osFilePath.h"
#include "base/rational.h"
#include "base/withoutNaNSign.h"

#include <charconv>
#include <cstddef>
#include <string_view>

namespace Zu
{

namespace
{

// Inserts a number as a new standard stream writes it.
LgStream& insertGeneral(LgStream& stream, double value)
{
    constexpr int PRECISION = 6;
    char text[32];
    const char* const end = std::to_chars(text, text + sizeof text, withoutNaNSign(value),
                                          std::chars_format::general, PRECISION)
                                .ptr;
    return stream << std::string_view(text, static_cast<std::size_t>(end - text));
}

} // namespace

LgStream& operator<<(LgStream& stream, const Rational& rational)
{
    stream << '(' << rational.getNumerator() << '/' << rational.getDenominator() << '=';
    return insertGeneral(stream, rational.getDouble()) << ')';
}

LgStream& operator<<(LgStream& stream, const DtTimeIndex& index)
{
    return stream << static_cast<long long>(index);
}

LgStream& operator<<(LgStream& stream, const DtTime& time)
{
    return stream << '(' << time.getCount() << " @ " << time.getRate() << ')';
}

LgStream& operator<<(LgStream& stream, const DtRefTime& time)
{
    return stream << '(' << time.getCount() << " @ " << time.getRate() << ')';
}

LgStream& operator<<(LgStream& stream, const DtTimeMark& mark)
{
    return stream << '(' << mark.getStreamTime() << ' ' << mark.getRefTime() << ')';
}

LgStream& lgInsertInterval(LgStream& stream, double min, double max)
{
    insertGeneral(stream << '[', min) << ", ";
    return insertGeneral(stream, max) << ']';
}

LgStream& lgInsertInterval(LgStream& stream, const DtTimeIndex& min, const DtTimeIndex& max)
{
    return stream << '[' << min << ", " << max << ']';
}

LgStream& operator<<(LgStream& stream, const OsFilePath& path)
{
    return stream << path.getChars();
}

LgStream& operator<<(LgStream& stream, const ExBase& exception)
{
    return stream << exception.getReason();
}

} // namespace Zu
