// What tests of files share: content, trees, and guards for a scope.

#ifndef ZU_TESTS_FILETEST_H
#define ZU_TESTS_FILETEST_H

#include "support/platform.h"

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <random>
#include <string>
#include <string_view>
#include <system_error>

namespace support
{

inline void writeFile(const std::string& file, std::string_view content)
{
    std::ofstream stream(file, std::ios::binary);
    stream.write(content.data(), static_cast<std::streamsize>(content.size()));
}

inline std::string readFile(const std::string& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

// This many bytes without a pattern, always the same.
inline std::string noise(std::size_t size)
{
    std::mt19937 engine(4711);
    std::string bytes(size, '\0');
    for (char& byte : bytes) byte = static_cast<char>(engine() & 0xff);
    return bytes;
}

inline unsigned int modeOf(const std::string& path)
{
    return static_cast<unsigned int>(std::filesystem::status(path).permissions());
}

// Every path below a directory, with "/" as separator, and what is there: the content of a file, or
// a mark.
using Tree = std::map<std::string, std::string>;

inline const std::string DIRECTORY_MARK = "<directory>";

inline Tree treeAt(const std::string& root)
{
    Tree tree;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(root))
    {
        std::string& found = tree[entry.path().lexically_relative(root).generic_string()];
        if (entry.is_symlink())
            found = "<link> " + std::filesystem::read_symlink(entry.path()).string();
        else
            found = entry.is_directory() ? DIRECTORY_MARK : readFile(entry.path().string());
    }
    return tree;
}

// Sets the mask of the modes of new files for one scope.
class ModeMaskGuard
{
public:
    explicit ModeMaskGuard(unsigned int mask) : _old(setModeMask(mask)) {}
    ModeMaskGuard(const ModeMaskGuard&) = delete;
    ModeMaskGuard& operator=(const ModeMaskGuard&) = delete;

    ~ModeMaskGuard()
    {
        setModeMask(_old);
    }

private:
    unsigned int _old;
};

// Makes a directory the current one for one scope.
class CurrentDirectoryGuard
{
public:
    explicit CurrentDirectoryGuard(const std::string& path) : _old(std::filesystem::current_path())
    {
        std::filesystem::current_path(path);
    }
    CurrentDirectoryGuard(const CurrentDirectoryGuard&) = delete;
    CurrentDirectoryGuard& operator=(const CurrentDirectoryGuard&) = delete;

    ~CurrentDirectoryGuard()
    {
        std::error_code ignored;
        std::filesystem::current_path(_old, ignored);
    }

private:
    std::filesystem::path _old;
};

} // namespace support

#endif
