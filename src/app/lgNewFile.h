/// @file
/// Files that other processes see only when they are prepared. Internal to the application kit.

#ifndef ZU_APP_LGNEWFILE_H
#define ZU_APP_LGNEWFILE_H

#include <functional>
#include <string>

namespace Zu
{

/// What is done with a new file, given its descriptor, before it has its name: it is locked, for
/// example. Returns false, with `errno` set, if that fails.
using LgPrepare = std::function<bool(int)>;

/// Makes a file that only its user can read, prepares it, and gives it its name, which must be
/// free. So no process finds it unlocked and takes it for one that was left. Where a file system
/// has no files without names, it has its name from the beginning. Returns the descriptor, which is
/// none of the standard streams' and not inherited; a negative number, with `errno` set, if
/// anything fails: then there is no file.
int lgNewFile(const std::string& path, const LgPrepare& prepare);

/// The same with the name from the beginning.
int lgNewNamedFile(const std::string& path, const LgPrepare& prepare);

} // namespace Zu

#endif
