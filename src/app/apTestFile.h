/// @file
/// A report that replaces an older one as a whole. Internal to the kit.

#ifndef ZU_APP_APTESTFILE_H
#define ZU_APP_APTESTFILE_H

#include <fstream>
#include <string>

namespace Zu
{

/// A file that is written beside another one, and then takes its place: whoever reads that one
/// finds the old report or the new one. A link, and what is no plain file, such as a device, is
/// written itself. Where others can write, what is written is the user's own: see osOpenOutput().
///
/// Thread-safety: one thread.
class ApTestFile
{
public:
    /// Opens "path.new", so that a place that can't be written to is known at once.
    explicit ApTestFile(std::string path);
    ApTestFile(const ApTestFile&) = delete;
    ApTestFile& operator=(const ApTestFile&) = delete;
    /// Without write(), all stays as it was.
    ~ApTestFile();

    /// Whether it can be written; to be asked before write().
    bool isOpen() const;

    /// Writes the text and puts it in its place; to be called once. Returns false, and leaves the
    /// old file as it was, if that fails.
    bool write(const std::string& text);

private:
    std::string _path;
    // Equal to the path if that is written itself.
    std::string _beside;
    std::ofstream _stream;
};

/// Gives a file another name, and replaces the file of that name; the platform's part of
/// ApTestFile. Returns whether it has succeeded.
bool apRenameOver(const std::string& from, const std::string& to);

} // namespace Zu

#endif
