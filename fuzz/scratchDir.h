// A directory for the files that a target hands to the library.

#ifndef ZU_FUZZ_SCRATCHDIR_H
#define ZU_FUZZ_SCRATCHDIR_H

#include <filesystem>
#include <string>

namespace fuzz
{

// A new directory below the system's place for temporary files; it goes with the object.
class ScratchDir
{
public:
    ScratchDir();
    ScratchDir(const ScratchDir&) = delete;
    ScratchDir& operator=(const ScratchDir&) = delete;
    ~ScratchDir();

    std::string path() const;
    std::string file(const std::string& name) const;

private:
    std::filesystem::path _path;
};

} // namespace fuzz

#endif
