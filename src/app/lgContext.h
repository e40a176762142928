/// @file
/// What a thread is working on, in each line that it logs.

#ifndef ZU_APP_LGCONTEXT_H
#define ZU_APP_LGCONTEXT_H

#include "appApi.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>

namespace Zu
{

/// A field in each line that its thread logs while the object lives:
///
///     const Zu::LgContext request("request", 4711);
///     const Zu::LgContext user("user", userName);
///     ZU_LOG_WARNING(Orders, "order " << order << " is late");
///
/// writes "Orders order 7 is late {request=4711, user=ann}". A name or value that is empty or has
/// other characters than letters, digits and "_.:/@+-" of ASCII stands in quotation marks, with a
/// backslash before quotation marks and backslashes; control characters become "?". Fields have the
/// order in which they were made, and may have the same name.
///
/// An object belongs to the thread that made it, and ends before those that were made earlier, as
/// local variables do. A thread does not inherit the fields of the one that starts it. Statements
/// of threads without fields are written as if there were none.
///
/// Raises std::bad_alloc, or std::system_error if the system has no room for one more value of each
/// thread; then there is no field. Costs some allocations when it is made, and one copy of the
/// fields for each event.
class LgContext
{
public:
    /// Both texts are copied.
    LgContext(std::string_view name, std::string_view value) : _before(push(name, value)) {}

    /// A whole number, or "true" or "false".
    template <class T, class = std::enable_if_t<std::is_integral_v<T>>>
    LgContext(std::string_view name, T value) : LgContext(name, std::string_view(textOf(value)))
    {
    }

    LgContext(const LgContext&) = delete;
    LgContext& operator=(const LgContext&) = delete;

    ~LgContext()
    {
        pop(_before);
    }

    /// Gives the calling thread a name. It stands before the fields, as in
    /// "{thread=worker, request=4711}", in all lines of the thread from now on. The system gets it,
    /// too, for debuggers and lists of threads; Linux keeps its first 15 bytes, and shows the name
    /// of the main thread as that of the process. An empty name is none, and leaves that of the
    /// system. Raises what the constructor raises.
    ZU_APP_API static void nameThread(std::string_view name);

private:
    template <class T> static std::string textOf(T value)
    {
        if constexpr (std::is_same_v<T, bool>)
            return value ? "true" : "false";
        else
            return std::to_string(value);
    }

    ZU_APP_API static std::size_t push(std::string_view name, std::string_view value);
    ZU_APP_API static void pop(std::size_t before) noexcept;

    std::size_t _before;
};

} // namespace Zu

#endif
