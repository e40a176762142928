/// @file
/// Files that nobody else can change. Internal to the kit.

#ifndef ZU_APP_APOWNFILE_H
#define ZU_APP_APOWNFILE_H

#include <cstddef>
#include <string>
#include <vector>

namespace Zu
{

/// The longest file that apReadOwnFile() reads.
inline constexpr std::size_t AP_LONGEST_FILE = 1 << 20;

/// Reads a file whole into `content`. Refuses what is not a plain file, what others than this user
/// and the machine's administrator can change, and what is longer than AP_LONGEST_FILE. Links are
/// followed; the directory, whose owner can put another file in the place of this one, is not
/// looked at. Returns an empty text, or why it was not read.
std::string apReadOwnFile(const std::string& path, std::string& content);

/// An entry of the list that says who may do what with a file, on Windows.
struct ApAccessEntry
{
    /// What it does to those whom it is about.
    enum class Kind
    {
        Allows,
        Denies,
        Unknown
    };

    Kind _kind = Kind::Unknown;
    /// Whether it is about the files of a directory, and not about this one.
    bool _isForOthers = false;
    /// Whether it is about changes of the file, its owner or this list.
    bool _isForChanges = false;
    /// Whether it is about this user, or somebody who may do everything anyway.
    bool _isForTrusted = false;
    /// Whom it is about, for messages.
    std::string _who;
};

/// Why a file with these entries is not to be trusted; empty if it is. An entry of an unknown kind
/// might allow anything.
std::string apRefusalOf(const std::vector<ApAccessEntry>& entries);

} // namespace Zu

#endif
