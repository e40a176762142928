/// @file
/// Many files, of which a bounded number is open.

#ifndef ZU_ZULOG_ZLOPENFILES_H
#define ZU_ZULOG_ZLOPENFILES_H

#include "zlFile.h"

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <string>

namespace Zu
{

class ZlPooledFile;

/// Keeps the plain files open that were used last. The others are closed, and opened again when
/// they are used. Not thread-safe.
class ZlOpenFiles
{
public:
    /// At most so many are open, at least one.
    explicit ZlOpenFiles(std::size_t most) : _most(most) {}

    std::size_t getOpenCount() const
    {
        return _files.size();
    }

private:
    friend class ZlPooledFile;
    using Files = std::list<ZlPooledFile*>;

    const std::size_t _most;
    // The one that was used last is the first.
    Files _files;
};

/// A file that may be closed while it is not read. It is then known by its identity, and found also
/// where it was renamed as rotated files are. Not thread-safe.
class ZlPooledFile
{
public:
    /// Opens a file, as ZlFile does. The pool may be null: then it stays open.
    ZlPooledFile(const std::string& name, std::shared_ptr<ZlOpenFiles> pool);
    ~ZlPooledFile();
    ZlPooledFile(const ZlPooledFile&) = delete;
    ZlPooledFile& operator=(const ZlPooledFile&) = delete;

    const std::string& getName() const
    {
        return _name;
    }

    /// As of a ZlFile. Raise ZlError also if the file was removed or replaced while it was closed.
    /// @{
    std::size_t read(char* place, std::size_t size);
    void seek(std::uint64_t offset);
    ZlFile::Facts getFacts();
    /// @}

    std::uint64_t getOffset() const
    {
        return _offset;
    }

    const ZlFile::Identity& getIdentity() const
    {
        return _identity;
    }

private:
    ZlFile& use();
    void enter();
    void close();
    std::unique_ptr<ZlFile> openAgain() const;
    std::unique_ptr<ZlFile> openIfSame(const std::string& name) const;

    const std::string _name;
    const std::shared_ptr<ZlOpenFiles> _pool;
    // Null while it is closed.
    std::unique_ptr<ZlFile> _file;
    ZlFile::Identity _identity;
    std::uint64_t _offset = 0;
    // Among those of the pool, while it is open.
    ZlOpenFiles::Files::iterator _place;
    bool _isPooled = false;
};

/// A pool that suits what the system permits this process.
std::shared_ptr<ZlOpenFiles> zlMakeOpenFiles();

} // namespace Zu

#endif
