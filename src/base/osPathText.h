/// @file
/// Paths as text, in the forms of both platforms. Internal to the library; nothing here touches a
/// file system.

#ifndef ZU_BASE_OSPATHTEXT_H
#define ZU_BASE_OSPATHTEXT_H

#include <string>
#include <string_view>

namespace Zu
{

/// With drive letters: at least three characters, of which the second is ":" or the first two are
/// backslashes. Deliberately "C:x" is absolute, and "C:" and "\x\y" are not.
bool osIsAbsoluteWithDrive(std::string_view path);

/// Without drives: begins with "/".
bool osIsAbsoluteWithoutDrive(std::string_view path);

/// `base` and `element` with one separator between them, unless `base` is empty or ends in one.
std::string osConcatenate(std::string_view base, std::string_view element, char separator);

/// The directory of a resolved path: the path itself if what was resolved is "." or "..", otherwise
/// the path up to its last separator, which is dropped. `root` is what is left of a path whose only
/// separator is its first character.
std::string osDirectoryName(std::string_view fullPath, std::string_view given, char separator,
                            std::string_view root);

/// What follows the last "." of a name; empty if there is none.
std::string_view osExtension(std::string_view baseName);

/// Resolves `path` against `currentDir`, an absolute path, as text alone: "/" separates; ".", ".."
/// and repeated separators collapse; a separator at the end stays. Links are not examined.
std::string osLexicalFullPath(std::string_view currentDir, std::string_view path);

/// Whether the last element of a path is the name of something in a directory, and not a step ("."
/// or ".."), a root or a drive. Trailing separators do not matter. Where backslashes separate,
/// trailing dots and blanks of a name are dropped, so they alone are not a name.
bool osEndsInName(std::string_view path, char separator);

} // namespace Zu

#endif
