/// @file
/// What stands behind the text of each statement: where it is, and what its thread is working on.
/// Internal to the application kit.

#ifndef ZU_APP_LGSUFFIX_H
#define ZU_APP_LGSUFFIX_H

#include <cstddef>
#include <string>
#include <string_view>

namespace Zu::LgSuffix
{

/// Whether each text is followed by the place of its statement, as in " [orders.cpp:17]". Any
/// thread may call it.
void showPlaces(bool isShown);

/// Adds a field to those of the calling thread. Returns what pop() takes to remove it.
std::size_t push(std::string_view name, std::string_view value);

/// Removes a field of the calling thread, and those that were added after it. At the end of a
/// thread they are all removed already.
void pop(std::size_t before) noexcept;

/// Has the calling thread's name stand before its fields; an empty one ends that.
void nameThread(std::string_view name);

/// The beginning of a text in UTF-8, of at most so many bytes, which ends with a whole character. A
/// NUL ends the text.
std::string beginningOf(std::string_view text, std::size_t most);

/// A field as it is written: `request=4711`, `user="Ann Lee"`. Names and values stand in quotation
/// marks if they are empty or have other characters than letters, digits and "_.:/@+-" of ASCII.
/// In quotation marks, these and backslashes have a backslash before them, and each control
/// character is replaced by "?".
std::string field(std::string_view name, std::string_view value);

} // namespace Zu::LgSuffix

#endif
