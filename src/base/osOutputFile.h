/// @file
/// Opens files of known names in places that others can write to. Internal to the library.

#ifndef ZU_BASE_OSOUTPUTFILE_H
#define ZU_BASE_OSOUTPUTFILE_H

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

/// Opens a file for text of the library, as `file.open(name, appends ? app : trunc)` in binary mode
/// does, but without a buffer, so that nothing is kept that the system has refused. Children of the
/// process do not inherit it. Failure shows in the stream.
///
/// Where others can write, as in a shared temporary directory, an existing file must be the user's
/// own, even if it is a link, and must not have a second name; a new file is readable by its owner
/// only. Of the path, only the directory that contains the file is examined. On Windows the
/// temporary directory is the user's, and files are opened without a check.
void osOpenOutput(std::ofstream& file, const char* name, bool appends);

/// Hands an open descriptor to a stream, which then owns it. Returns false if that fails; the
/// caller then still owns the descriptor.
bool osAdoptOutput(std::ofstream& file, int descriptor, bool appends);

} // namespace Zu

#endif
