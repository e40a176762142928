// A private directory for one test.

#ifndef ZU_TESTS_TEMPDIR_H
#define ZU_TESTS_TEMPDIR_H

#include <filesystem>
#include <string>

namespace support
{

// Makes a new directory below the system's directory for temporary files, and removes it with its
// content.
class TempDir
{
public:
    TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    ~TempDir();

    // The directory, in the platform's own form, without a separator at its end.
    std::string path() const;

    // The path of a file in it.
    std::string file(const std::string& name) const;

private:
    std::filesystem::path _path;
};

} // namespace support

#endif
