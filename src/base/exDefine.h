/// @file
/// Shared by the sources of the exception families. Internal to the library.

#ifndef ZU_BASE_EXDEFINE_H
#define ZU_BASE_EXDEFINE_H

#include "compiler.h"
#include "exBase.h"

#include <cstdarg>
#include <cstdio>

/// Defines the two operations that every concrete exception implements.
#define ZU_EX_WHAT_AND_CLONE(Class)                                                                \
    const char* Class::what() const noexcept                                                       \
    {                                                                                              \
        return getReason();                                                                        \
    }                                                                                              \
    ::Zu::ExBase* Class::clone() const                                                             \
    {                                                                                              \
        return new Class(*this);                                                                   \
    }

namespace Zu
{

/// A reason made with a `printf` format, truncated to the length that an exception stores.
class ExText
{
public:
    ZU_PRINTF_FORMAT(2, 3) explicit ExText(const char* format, ...)
    {
        std::va_list arguments;
        va_start(arguments, format);
        std::vsnprintf(_text, sizeof _text, format, arguments);
        va_end(arguments);
    }

    const char* get() const
    {
        return _text;
    }

    /// A text argument that is safe for `%s`: null becomes the empty text.
    static const char* orEmpty(const char* text)
    {
        return text ? text : "";
    }

private:
    char _text[1024];
};

} // namespace Zu

#endif
