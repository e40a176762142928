/// @file
/// Writes JSON. Internal to the application kit.

#ifndef ZU_APP_LGSERVICEJSON_H
#define ZU_APP_LGSERVICEJSON_H

#include <cstdint>
#include <string>
#include <string_view>

namespace Zu
{

/// A text as a JSON string, in UTF-8 whatever the bytes are: what is not UTF-8 is shown as lines of
/// the log show it, "\xff".
std::string lgJsonText(std::string_view text);

/// The members of a JSON object, one after the other. Not thread-safe.
class LgJsonMembers
{
public:
    /// @{
    /// Adds a member whose value is this JSON, or this number.
    LgJsonMembers& add(std::string_view name, std::string_view json);
    LgJsonMembers& add(std::string_view name, std::uint64_t value);
    /// @}

    /// The object.
    std::string object() const;

private:
    std::string _text;
};

} // namespace Zu

#endif
