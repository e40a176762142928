/// @file
/// A snapshot of environment variables. Internal to the library.

#ifndef ZU_BASE_INENVIRONMENT_H
#define ZU_BASE_INENVIRONMENT_H

#include <iosfwd>
#include <map>
#include <string>

namespace Zu
{

/// Names and values as they were when the object was constructed.
class InEnvironment
{
public:
    /// Takes the entries of a null-terminated array; null stands for an empty one. Each entry is
    /// split at its first "="; a later entry for the same name wins. An entry without "=" is
    /// skipped and reported to `messages`.
    InEnvironment(const char* const* entries, std::ostream& messages);

    /// The value of `name`, owned by the snapshot, or null.
    const char* find(const char* name) const;

private:
    std::map<std::string, std::string, std::less<>> _values;
};

/// The entries of this process's environment, a null-terminated array; null when there is none.
const char* const* inProcessEnvironment();

} // namespace Zu

#endif
