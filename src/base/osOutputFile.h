/// @file
/// Opens files of known names in places that others can write to. Internal to the library.

#ifndef ZU_BASE_OSOUTPUTFILE_H
#define ZU_BASE_OSOUTPUTFILE_H

#include <cstdint>
#include <iosfwd>

namespace Zu
{

/// What is asked of a directory or a file before it is trusted; users by their numbers.
struct OsOwnership
{
    std::uint32_t _owner;
    /// The permission bits.
    std::uint32_t _mode;
    /// How many names it has.
    std::uint64_t _links;
};

/// Whether users other than this one and the system can make or exchange files in a directory. The
/// group of a directory of one's own is trusted, since its owner has chosen it, that of one of the
/// system's is not.
bool osIsSharedPlace(const OsOwnership& directory, std::uint32_t user);

/// Whether a link that stands for a directory leads where this user or the system wants it to.
bool osIsTrustedLink(const OsOwnership& link, std::uint32_t user);

/// Whether what stands in a shared place is this user's own. A second name of a file may have been
/// made by another user, who thus has a file of ours written to.
bool osIsOwnOutput(const OsOwnership& file, std::uint32_t user);

/// Opens a file for text of the library, as `file.open(name, appends ? app : trunc)` in binary mode
/// does, but without a buffer, so that nothing is kept which the system has refused, and not for
/// the children of the process; failure shows in the stream. Where others can write, as in a
/// temporary directory for all, what stands there under the name has to be the user's own, be it a
/// link, and has to have no second name; a new file is readable by its owner alone. Of the path
/// only the directory that holds the file is looked at. On Windows the temporary directory is the
/// user's, and files are opened without a question.
void osOpenOutput(std::ofstream& file, const char* name, bool appends);

/// Puts an open descriptor into a stream, which owns it from then on. False, and the descriptor is
/// still the caller's, if that failed.
bool osAdoptOutput(std::ofstream& file, int descriptor, bool appends);

} // namespace Zu

#endif
