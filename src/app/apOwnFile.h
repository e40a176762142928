/// @file
/// Files that nobody else can change. Internal to the kit.

#ifndef ZU_APP_APOWNFILE_H
#define ZU_APP_APOWNFILE_H

#include <cstddef>
#include <string>

namespace Zu
{

/// The longest file that apReadOwnFile() reads.
inline constexpr std::size_t AP_LONGEST_FILE = 1 << 20;

/// Reads a file whole into `content`. Refuses what is not a plain file, what others than this user
/// and the machine's administrator can change, and what is longer than AP_LONGEST_FILE. Links are
/// followed; the directory, whose owner can put another file in the place of this one, is not
/// looked at. Returns an empty text, or why it was not read.
std::string apReadOwnFile(const std::string& path, std::string& content);

} // namespace Zu

#endif
