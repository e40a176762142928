#include "base/osFileTools.h"

#include "base/exSysError.h"
#include "base/osFileEx.h"
#include "base/osFileHandle.h"
#include "base/osFilePlatform.h"
#include "base/osFsUtils.h"
#include "base/osUtils.h"

#include <algorithm>
#include <atomic>
#include <cstring>

namespace Zu
{

namespace
{

constexpr std::uint32_t CHUNK = 65536;
constexpr int OWNER_ALONE = OsFileTypes::AccessRead | OsFileTypes::AccessWrite;

// A new file beside another one, which is gone at the end unless it has taken that one's name.
class FileBeside
{
public:
    FileBeside(const OsFilePath& target, const OsFileTypes::Permissions& permissions)
        : _path(nameBeside(target).c_str()), _writer(_path, permissions, true)
    {
    }

    FileBeside(const FileBeside&) = delete;
    FileBeside& operator=(const FileBeside&) = delete;

    ~FileBeside()
    {
        if (_isTaken) return;
        // It must not stay open: not every system removes what is.
        try
        {
            _writer.close();
        }
        catch (const ExBase&)
        {
        }
        OsFilePlatform::remove(_path.getChars());
    }

    const OsFilePath _path;
    OsFileWriter _writer;
    bool _isTaken = false;

private:
    // Short, as the name of the file may be the longest that there is.
    static std::string nameBeside(const OsFilePath& target)
    {
        static std::atomic<unsigned int> number{0};
        const std::string path = target.getChars();
        const std::size_t end = path.find_last_of(std::string(OsFilePath::getSeparator()) + "/");
        const std::string directory = end == std::string::npos ? "" : path.substr(0, end + 1);
        // What a process of the same number has left behind keeps its name.
        for (;;)
        {
            const std::string name = directory + "." + std::to_string(OsUtils::getPid()) + "-" +
                                     std::to_string(number++) + ".new";
            if (!OsFsUtils::fileExists(name.c_str())) return name;
        }
    }
};

void writeWhole(OsFileWriter& writer, std::string_view content)
{
    while (!content.empty())
    {
        const auto size =
            static_cast<std::uint32_t>(std::min<std::size_t>(content.size(), 1 << 30));
        if (writer.write(content.data(), size) != size)
        {
            OsFilePlatform::setLastError(OsFilePlatform::Error::DiskFull);
            throw ExSysErrorWindows(__FILE__, __LINE__);
        }
        content.remove_prefix(size);
    }
}

// As many bytes as fit, unless the file ends before.
std::uint32_t readChunk(OsFileReader& reader, char* buffer)
{
    std::uint32_t size = 0;
    while (size < CHUNK)
    {
        const std::uint32_t count = reader.read(buffer + size, CHUNK - size);
        if (count == 0) break;
        size += count;
    }
    return size;
}

// The file that a link leads to; a link that leads nowhere is replaced itself.
OsFilePath behindLinks(const OsFilePath& path)
{
    if (!OsFsUtils::isSymLink(path.getChars())) return path;
    const std::string resolved = OsFilePlatform::resolved(path.getChars());
    return resolved.empty() ? path : OsFilePath(resolved.c_str());
}

// With a separator behind it, a link would be taken for what it leads to.
OsFilePath withoutSeparatorsAtEnd(const OsFilePath& path)
{
    const std::string text = path.getChars();
    const std::size_t last = text.find_last_not_of(std::string(OsFilePath::getSeparator()) + "/");
    return last == std::string::npos ? path : OsFilePath(text.substr(0, last + 1).c_str());
}

void removeTree(const OsFilePath& path)
{
    if (OsFilePlatform::isLink(path.getChars()))
    {
        if (!OsFilePlatform::removeLink(path.getChars()))
            throw ExSysErrorWindows(__FILE__, __LINE__);
        return;
    }
    if (!OsFsUtils::isDirectory(path.getChars()))
    {
        OsFile(path).remove();
        return;
    }
    OsDirectory directory(path);
    const ObjPtr<Vector<OsFilePath>> children =
        directory.getChildrenPath(OsFileTypes::PathFull, OsPassThroughFilter());
    for (const OsFilePath& child : *children) removeTree(child);
    directory.remove();
}

} // namespace

std::uint64_t OsFileTools::getSize64(const OsFilePath& path)
{
    if (!OsFile(path).exists()) throw OsFileEx::ExInvalidPath(__FILE__, __LINE__, path.getChars());
    std::uint64_t size = 0;
    if (!OsFilePlatform::sizeOf(path.getChars(), size)) throw ExSysErrorWindows(__FILE__, __LINE__);
    return size;
}

std::int64_t OsFileTools::seek64(OsFileReader& reader, std::int64_t offset,
                                 OsFileTypes::SeekMode mode)
{
    return OsFileHandle::seek(reader._handle, offset, mode);
}

std::int64_t OsFileTools::seek64(OsFileWriter& writer, std::int64_t offset,
                                 OsFileTypes::SeekMode mode)
{
    return OsFileHandle::seek(writer._handle, offset, mode);
}

void OsFileTools::reserve64(OsFileWriter& writer, std::int64_t size)
{
    OsFileHandle::check(writer._handle);
    if (!OsFilePlatform::resize(writer._handle, size)) throw ExSysErrorWindows(__FILE__, __LINE__);
}

std::string OsFileTools::readAll(const OsFilePath& path)
{
    OsFileReader reader(path);
    std::string content;
    char buffer[CHUNK];
    while (const std::uint32_t count = reader.read(buffer, CHUNK)) content.append(buffer, count);
    reader.close();
    return content;
}

void OsFileTools::replaceAll(const OsFilePath& path, std::string_view content,
                             const OsFileTypes::Permissions& permissions)
{
    OsFileHandle::checkNotEmpty(path);
    const OsFilePath target = behindLinks(path);
    if (!OsFilePlatform::isReplaceable(target.getChars()))
        throw OsFileEx::ExInvalidPath(__FILE__, __LINE__, target.getChars());
    // What replaces a file may be private until it has that one's modes.
    const bool isThere = OsFsUtils::fileExists(target.getChars());
    FileBeside beside(target, isThere ? OsFileTypes::Permissions(OWNER_ALONE, 0, 0) : permissions);
    writeWhole(beside._writer, content);
    if (!OsFilePlatform::flush(beside._writer._handle)) throw ExSysErrorWindows(__FILE__, __LINE__);
    beside._writer.close();
    OsFilePlatform::copyModes(target.getChars(), beside._path.getChars());
    if (!OsFilePlatform::replace(beside._path.getChars(), target.getChars()))
        throw ExSysErrorWindows(__FILE__, __LINE__);
    beside._isTaken = true;
    OsFilePlatform::flushDirectoryOf(target.getChars());
}

ObjPtrRet<Vector<OsFilePath>> OsFileTools::getSortedChildrenPath(const OsDirectory& directory,
                                                                 OsFileTypes::PathTypes type,
                                                                 const OsFileFilter& filter)
{
    ObjPtr<Vector<OsFilePath>> paths = directory.getChildrenPath(type, filter);
    std::sort(paths->begin(), paths->end(),
              [](const OsFilePath& a, const OsFilePath& b)
              { return OsFilePath::compare(a.getChars(), b.getChars()) < 0; });
    return paths;
}

void OsFileTools::removeWithAllContents(const OsFilePath& path)
{
    OsFileHandle::checkNotEmpty(path);
    if (!OsFsUtils::fileExists(path.getChars()) && !OsFilePlatform::isLink(path.getChars()))
        throw OsFileEx::ExInvalidPath(__FILE__, __LINE__, path.getChars());
    removeTree(withoutSeparatorsAtEnd(path));
}

bool OsFileTools::haveSameContent(const OsFilePath& a, const OsFilePath& b)
{
    OsFileReader readerA(a);
    OsFileReader readerB(b);
    char bufferA[CHUNK];
    char bufferB[CHUNK];
    for (;;)
    {
        const std::uint32_t size = readChunk(readerA, bufferA);
        if (readChunk(readerB, bufferB) != size || std::memcmp(bufferA, bufferB, size) != 0)
            return false;
        if (size == 0) return true;
    }
}

} // namespace Zu
