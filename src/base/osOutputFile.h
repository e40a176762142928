/// @file
/// Opens files of known names in places that others can write to. Internal to the library.

#ifndef ZU_BASE_OSOUTPUTFILE_H
#define ZU_BASE_OSOUTPUTFILE_H

#include "baseApi.h"

#include <cstdint>
#include <iosfwd>

namespace Zu
{

/// What is examined of a directory or a file before it is trusted; users are given by number.
struct OsOwnership
{
    std::uint32_t _owner;
    /// The permission bits.
    std::uint32_t _mode;
    /// How many names, that is hard links, it has.
    std::uint64_t _links;
};

/// Whether users other than this one and the system can make or replace files in a directory. The
/// group of the user's own directory is trusted, since its owner has chosen it; that of a system
/// directory is not.
bool osIsSharedPlace(const OsOwnership& directory, std::uint32_t user);

/// Whether this user or the system owns a link in place of a directory, and so chooses its target.
bool osIsTrustedLink(const OsOwnership& link, std::uint32_t user);

/// Whether a file in a shared place is this user's own. Another user may have made a second name
/// for one of this user's files, to have that file written to.
bool osIsOwnOutput(const OsOwnership& file, std::uint32_t user);

/// How osOpenOutputFile() opens a file. One that is missing is made.
enum class OsOutputMode
{
    /// Emptied, and written from its beginning.
    Emptied,
    /// Written behind whatever is there at the time of each write.
    Appended,
    /// Appended, and can also be read if the system permits it, which it does for plain files only.
    /// Opening neither waits for the reader of a pipe, but fails without one, nor gives the process
    /// a terminal of its own. On Windows the file can be renamed and removed while it is open.
    Kept
};

/// Opens a file in the same place and with the same checks as osOpenOutput(). Returns its
/// descriptor, on Windows its handle, which the caller closes. Returns -1 if that fails; the last
/// error of the platform then says why. A file or link that does not pass the checks is reported as
/// one that the operation is not permitted for.
ZU_BASE_API std::intptr_t osOpenOutputFile(const char* name, OsOutputMode mode);

/// Opens a file for text of the library, as `file.open(name, appends ? app : trunc)` in binary mode
/// does, but without a buffer, so that nothing is kept that the system has refused. Children of the
/// process do not inherit it. Failure shows in the stream.
///
/// Where others can write, as in a shared temporary directory, an existing file must be the user's
/// own, even if it is a link, and must not have a second name; a new file is readable by its owner
/// only. Of the path, only the directory that contains the file is examined. On Windows the
/// temporary directory is the user's, and files are opened without a check.
ZU_BASE_API void osOpenOutput(std::ofstream& file, const char* name, bool appends);

/// Hands an open descriptor to a stream, which then owns it. Returns false if that fails; the
/// caller then still owns the descriptor.
bool osAdoptOutput(std::ofstream& file, int descriptor, bool appends);

} // namespace Zu

#endif
