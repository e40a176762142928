/// @file
/// A file that is written beside another one, and then takes its place.

#ifndef ZU_ZULOG_ZLREPLACEMENT_H
#define ZU_ZULOG_ZLREPLACEMENT_H

#include <cstdio>
#include <string>

namespace Zu
{

/// Makes a file, or replaces one as a whole: until that is complete, the old one stays, and
/// whoever opens it reads it undisturbed. What is no plain file, as a device, is written itself;
/// a link stays, and leads to the new file. Not thread-safe.
class ZlReplacement
{
public:
    /// Begins. The name is in UTF-8. Raises ZlError if it can't be opened.
    explicit ZlReplacement(const std::string& name);
    /// Without finish(), all stays as it was.
    ~ZlReplacement();
    ZlReplacement(const ZlReplacement&) = delete;
    ZlReplacement& operator=(const ZlReplacement&) = delete;

    /// What is to be written. Owned by this object.
    std::FILE* getFile() const
    {
        return _file;
    }

    /// Puts the file into its place. Raises ZlError; the old one then stays.
    void finish();

private:
    [[noreturn]] void fail(const char* what, const std::string& reason) const;

    const std::string _name;
    // Where it is to be, and where it is written; equal if it is written itself.
    std::string _place;
    std::string _beside;
    std::FILE* _file = nullptr;
};

} // namespace Zu

#endif
