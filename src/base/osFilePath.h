/// @file
/// Paths.

#ifndef ZU_BASE_OSFILEPATH_H
#define ZU_BASE_OSFILEPATH_H

#include "arrayPtr.h"
#include "baseApi.h"

#include <cstddef>
#include <iosfwd>

namespace Zu
{

/// A path: text, with the few operations that interpret it as a path.
///
/// The text is kept exactly as given: separators, "." and ".." and a separator at the end stay, so
/// two paths to one file can differ. Making a path touches no disk; only getBaseName(),
/// getDirectoryName(), getExtension() and the functions that name directories ask the platform.
///
/// | | Windows | Linux |
/// |---|---|---|
/// | separator | one backslash | "/" |
/// | absolute | second character ":" or first two characters backslashes, at least 3 characters | begins with "/" |
/// | root directory | of the current drive, "C:\" | "/" |
///
/// Text parameters must not be null unless documented otherwise. An operation that raises leaves
/// its object unchanged. Paths are values without shared state. Operations that ask the platform
/// read the environment or the current directory, and must not race with a change of those.
class ZU_BASE_API OsFilePath
{
public:
    /// The empty path.
    OsFilePath();

    /// A copy of the text; null gives the empty path.
    OsFilePath(const char* path);

    /// @{
    /// A copy of the text.
    OsFilePath(const OsFilePath& other);
    OsFilePath& operator=(const OsFilePath& other);
    /// @}

    /// As set().
    OsFilePath& operator=(const char* path);
    ~OsFilePath();

    /// Replaces the text by a copy of `path`.
    void set(const char* path);

    /// The text, owned by the path; never null.
    const char* getChars() const;

    /// Whether the text has no character.
    bool isEmpty() const;

    /// @{
    /// Whether the path begins at a root; decided by the text alone, see the class's table.
    bool isAbsolute() const;
    static bool isAbsolute(const char* path);
    /// @}

    /// The opposite of isAbsolute().
    bool isRelative() const;

    /// What follows the last "." of getBaseName(), or the empty text. Raises what that raises.
    ArrayPtrRet<char> getExtension() const;

    /// The last element of the resolved path; the empty path if that ends in a separator. Raises
    /// ExSysErrorWindows if the path can't be resolved: the empty path, or one that resolves to
    /// more than 1,023 characters.
    OsFilePath getBaseName() const;

    /// The directory of the resolved path: for "." and ".." the resolved path itself, otherwise
    /// what precedes its last separator. A path that ends in a separator gives that path without
    /// it. A drive's root gives the bare drive, "C:"; on Linux "/a" and "/" both give "/". Raises
    /// what getBaseName() raises.
    OsFilePath getDirectoryName() const;

    /// @{
    /// Appends a relative path, with a separator between unless this path is empty or ends in one.
    /// Raises OsFileEx::ExIllegalPathConcat if `path` is absolute.
    OsFilePath& operator+=(const OsFilePath& path);
    OsFilePath operator+(const OsFilePath& path) const;
    /// @}

    /// @{
    /// Appends one element. Raises OsFileEx::ExSeparatorNotAllowed if it contains a separator.
    OsFilePath& operator+=(const char* element);
    OsFilePath operator+(const char* element) const;
    /// @}

    /// -1, 0 or 1 by the first byte that differs, with bytes compared as unsigned; case matters on
    /// every platform.
    static int compare(const char* a, const char* b);

    /// The separator, a text of one character.
    static const char* getSeparator();

    /// The root directory, on Windows that of the current drive.
    static OsFilePath getRootDir();

    /// The directory for temporary files, with a separator at its end: on Windows what the platform
    /// reports, on Linux the variable TMPDIR or otherwise "/tmp/". Raises ExSysErrorWindows.
    static OsFilePath getTempDir();

    /// The value of the variable HOME, on Windows with each "/" turned into a backslash. Raises
    /// OsFileEx::ExHomeNotDefined if it is not set; no other variable is consulted. A value of more
    /// than 1,023 characters raises ExSysErrorWindows.
    static OsFilePath getHomeDir();

    /// Writes the text.
    std::ostream& dump(std::ostream& os) const;

private:
    // The length of every buffer that is passed to the platform, including the terminator.
    static constexpr std::size_t BUFFER_SIZE = 1024;

    // Each writes into the caller's buffer of BUFFER_SIZE characters and returns it.
    static char* getRootDir(char* buffer);
    static char* getTempDir(char* buffer);
    static char* getHomeDir(char* buffer);

    // Resolves a path into a buffer of BUFFER_SIZE characters; returns its last element in that
    // buffer, or null if it ends in a separator.
    static const char* performGetFullPath(const char* path, char* buffer);

    void concatenate(const char* element);

    ArrayPtr<char> _path;
};

} // namespace Zu

#endif
