/// @file
/// Where the two forms of paths differ. Internal to the library.

#ifndef ZU_BASE_OSPLATFORMPATH_H
#define ZU_BASE_OSPLATFORMPATH_H

namespace Zu
{

/// The form of paths of this platform.
struct OsPlatformPath
{
    /// The separator, a text of one character.
    static const char* separator();

    /// Whether the path is absolute.
    static bool isAbsolute(const char* path);

    /// What is left of the directory name when the only separator is the first character.
    static const char* rootName();

    /// The system's code for a name that is too long.
    static int nameTooLong();
};

} // namespace Zu

#endif
