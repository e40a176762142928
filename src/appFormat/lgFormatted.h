/// @file
/// Log statements with the formats of libfmt, for who prefers them to a chain of `<<`. A program
/// that includes this links ZU::appFormat, and has the headers of libfmt, from version 9 on.

#ifndef ZU_APPFORMAT_LGFORMATTED_H
#define ZU_APPFORMAT_LGFORMATTED_H

#include "../base/lgEvent.h"
#include "../base/lgStream.h"
#include "../base/lgTypes.h"

#include <fmt/format.h>
#include <iterator>
#include <string_view>

namespace Zu
{

/// Inserts what fmt::vformat() makes of a format and its arguments, up to its first NUL. A text of
/// up to 500 characters is made on the stack. Raises fmt::format_error for what only the values
/// show, for instance a width that is negative, and, for a longer text, std::bad_alloc. Thread-safe
/// for a stream of one's own.
inline void lgInsertFormatted(LgStream& stream, fmt::string_view format, fmt::format_args arguments)
{
    fmt::memory_buffer text;
    fmt::vformat_to(std::back_inserter(text), format, arguments);
    stream << std::string_view(text.data(), text.size());
}

/// A format with references to its arguments, kept to be inserted later. Lives no longer than the
/// statement.
template <class Arguments> class LgFormatted
{
public:
    /// The format and the arguments must outlive the object.
    LgFormatted(fmt::string_view format, const Arguments& arguments)
        : _format(format), _arguments(arguments)
    {
    }

    /// Inserts the text.
    void insertInto(LgStream& stream) const
    {
        lgInsertFormatted(stream, _format, _arguments);
    }

private:
    fmt::string_view _format;
    Arguments _arguments;
};

/// Inserts the text.
template <class Arguments>
LgStream& operator<<(LgStream& stream, const LgFormatted<Arguments>& formatted)
{
    formatted.insertInto(stream);
    return stream;
}

/// A format, checked when it is compiled, with its arguments. The second text is the same format;
/// it stands there because a macro can't take it away.
template <class... Arguments>
auto lgFormatted(fmt::format_string<Arguments...> format, const char*, Arguments&&... arguments)
{
    using Store = decltype(fmt::make_format_args(arguments...));
    return LgFormatted<Store>(format, fmt::make_format_args(arguments...));
}

} // namespace Zu

/// @{
/// The first of some arguments.
#define ZU_LOGF_FIRST(...) ZU_LOGF_FIRST_OF(__VA_ARGS__, )
#define ZU_LOGF_FIRST_OF(first, ...) first
/// @}

/// Logs like ZU_LOG, with a format of libfmt in the place of the chain:
///
///     ZU_LOGF(Orders, level, "order {} is late by {:.1f} days", order, days)
///
/// The text is that of fmt::format(), up to its first NUL. The format is a literal; a wrong one is
/// an error of the compiler. If the group does not let the level through, no argument is evaluated.
/// An argument may be anything that libfmt has a formatter for. An event that such a formatter logs
/// itself is lost. After an exception, such as fmt::format_error, no part of the event remains.
#define ZU_LOGF(group, level, ...)                                                                 \
    ZU_LOG(group, level, ::Zu::lgFormatted(FMT_STRING(ZU_LOGF_FIRST(__VA_ARGS__)), __VA_ARGS__))

/// @{
/// ZU_LOGF for one level each: ZU_LOGF_WARNING(Orders, "order {} is late", order).
#define ZU_LOGF_INTERNAL_ERROR(group, ...) ZU_LOGF(group, ::Zu::LgTypes::InternalError, __VA_ARGS__)
#define ZU_LOGF_FATAL_ERROR(group, ...) ZU_LOGF(group, ::Zu::LgTypes::FatalError, __VA_ARGS__)
#define ZU_LOGF_ERROR(group, ...) ZU_LOGF(group, ::Zu::LgTypes::Error, __VA_ARGS__)
#define ZU_LOGF_WARNING(group, ...) ZU_LOGF(group, ::Zu::LgTypes::Warning, __VA_ARGS__)
#define ZU_LOGF_INFORMATIONAL(group, ...) ZU_LOGF(group, ::Zu::LgTypes::Informational, __VA_ARGS__)
#define ZU_LOGF_TRACING(group, ...) ZU_LOGF(group, ::Zu::LgTypes::Tracing, __VA_ARGS__)
#define ZU_LOGF_PROFILING(group, ...) ZU_LOGF(group, ::Zu::LgTypes::Profiling, __VA_ARGS__)
/// @}

#endif
