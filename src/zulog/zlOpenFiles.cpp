#include "zulog/zlOpenFiles.h"

#include "zulog/zlInputs.h"
#include "zulog/zlPlatform.h"

#include <algorithm>
#include <utility>

namespace Zu
{

ZlPooledFile::ZlPooledFile(const std::string& name, std::shared_ptr<ZlOpenFiles> pool)
    : _name(name), _pool(std::move(pool)), _file(std::make_unique<ZlFile>(name)),
      _identity(_file->getIdentity())
{
    if (_pool && _file->isPlain()) enter();
}

ZlPooledFile::~ZlPooledFile()
{
    if (_isPooled) close();
}

std::size_t ZlPooledFile::read(char* place, std::size_t size)
{
    const std::size_t count = use().read(place, size);
    _offset += count;
    return count;
}

void ZlPooledFile::seek(std::uint64_t offset)
{
    use().seek(offset);
    _offset = offset;
}

ZlFile::Facts ZlPooledFile::getFacts()
{
    return use().getFacts();
}

ZlFile& ZlPooledFile::use()
{
    if (_isPooled) _pool->_files.splice(_pool->_files.begin(), _pool->_files, _place);
    if (_file) return *_file;
    _file = openAgain();
    enter();
    _file->seek(_offset);
    return *_file;
}

// The pool has room for one more than it keeps.
void ZlPooledFile::enter()
{
    ZlOpenFiles::Files& files = _pool->_files;
    _place = files.insert(files.begin(), this);
    _isPooled = true;
    if (files.size() > std::max<std::size_t>(_pool->_most, 1)) files.back()->close();
}

void ZlPooledFile::close()
{
    _pool->_files.erase(_place);
    _isPooled = false;
    _file.reset();
}

std::unique_ptr<ZlFile> ZlPooledFile::openAgain() const
{
    if (auto file = openIfSame(_name)) return file;
    for (const std::string& name : ZlListing().findRotated(_name))
        if (auto file = openIfSame(name)) return file;
    throw ZlError("\"" + _name + "\" was removed or replaced while it was read");
}

// Null if the name leads to another file.
std::unique_ptr<ZlFile> ZlPooledFile::openIfSame(const std::string& name) const
{
    ZlFile::Identity identity;
    if (!ZlFile::find(name, identity) || !(identity == _identity)) return nullptr;
    auto file = std::make_unique<ZlFile>(name);
    return file->getIdentity() == _identity ? std::move(file) : nullptr;
}

std::shared_ptr<ZlOpenFiles> zlMakeOpenFiles()
{
    // More gain nothing. The other half is for what else the program opens.
    constexpr std::size_t MOST = 512;
    return std::make_shared<ZlOpenFiles>(std::min(ZlPlatform::getFileLimit() / 2, MOST));
}

} // namespace Zu
