#include "base/osFileTools.h"

#include "base/exRaise.h"
#include "base/osFileEx.h"
#include "base/osFileHandle.h"
#include "base/osFilePlatform.h"
#include "base/osFsUtils.h"
#include "base/osPathText.h"
#include "base/osTreeCopier.h"
#include "base/osUtils.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <vector>

namespace Zu
{

namespace
{

constexpr std::uint32_t CHUNK = 65536;
// The number of links that the system follows.
constexpr int MOST_LINKS = 40;

OsFileTypes::Permissions ownerAlone()
{
    return {OsFileTypes::AccessRead | OsFileTypes::AccessWrite, 0, 0};
}

// The path without its last element, including the separator.
std::string directoryOf(const OsFilePath& path)
{
    const std::string text = path.getChars();
    return text.substr(0, text.find_last_of(std::string(OsFilePath::getSeparator()) + "/") + 1);
}

// A new file beside another one. It is removed at the end unless it has taken the other's name.
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
        // It must not stay open: not every system removes open files.
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
    // Short, as the name of the file may already have the maximum length.
    static std::string nameBeside(const OsFilePath& target)
    {
        static std::atomic<unsigned int> number{0};
        const std::string directory = directoryOf(target);
        // A file left behind by a process of the same number keeps its name.
        for (;;)
        {
            std::string name = directory + "." + std::to_string(OsUtils::getPid()) + "-" +
                               std::to_string(number++) + ".new";
            if (!OsFsUtils::fileExists(name.c_str())) return name;
        }
    }
};

// As many bytes as fit, unless the file ends first.
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

// The file that a link leads to, even if it is still to be made.
OsFilePath behindLinks(const OsFilePath& path)
{
    OsFilePath place = path;
    std::string target;
    for (int links = 0; OsFilePlatform::linkTarget(place.getChars(), target); ++links)
    {
        if (links == MOST_LINKS)
            ZU_RAISE_SYSTEM_ERROR(OsFilePlatform::codeOf(OsFilePlatform::Error::TooManyLinks));
        const OsFilePath next(target.c_str());
        place = next.isAbsolute() ? next : OsFilePath((directoryOf(place) + target).c_str());
    }
    return place;
}

// A link with a separator after it would be resolved to its target.
OsFilePath withoutSeparatorsAtEnd(const OsFilePath& path)
{
    const std::string text = path.getChars();
    const std::size_t last = text.find_last_not_of(std::string(OsFilePath::getSeparator()) + "/");
    return OsFilePath(text.substr(0, last + 1).c_str());
}

void removeTree(const OsFilePath& path)
{
    if (OsFilePlatform::isLink(path.getChars()))
    {
        if (!OsFilePlatform::removeLink(path.getChars())) ZU_RAISE_LAST_ERROR();
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
    if (!OsFilePlatform::sizeOf(path.getChars(), size)) ZU_RAISE_LAST_ERROR();
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
    if (!OsFilePlatform::resize(writer._handle, size)) ZU_RAISE_LAST_ERROR();
}

void OsFileTools::writeAll(OsFileWriter& writer, std::string_view content, std::uint64_t& written)
{
    OsFileHandle::writeAll(writer._handle, content, written);
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
    if (OsFilePlatform::isSpecial(path.getChars()))
        throw OsFileEx::ExInvalidPath(__FILE__, __LINE__, path.getChars());
    const OsFilePath target = behindLinks(path);
    // A replacement can be private until it gets the modes of the existing file.
    const bool isThere = OsFsUtils::fileExists(target.getChars());
    FileBeside beside(target, isThere ? ownerAlone() : permissions);
    std::uint64_t written = 0;
    writeAll(beside._writer, content, written);
    if (isThere) OsFilePlatform::keepOwnerAndModes(target.getChars(), beside._writer._handle);
    if (!OsFilePlatform::flush(beside._writer._handle)) ZU_RAISE_LAST_ERROR();
    beside._writer.close();
    if (!OsFilePlatform::replace(beside._path.getChars(), target.getChars())) ZU_RAISE_LAST_ERROR();
    beside._isTaken = true;
    OsFilePlatform::flushDirectoryOf(target.getChars());
}

// Copies with permission bits and times. Directories get theirs once their contents are copied.
class OsFileTools::KeepingCopier final : public OsTreeCopier
{
public:
    void copyFile(const OsFilePath& source, const OsFilePath& target) override
    {
        const OsFilePath destination = OsFileHandle::destinationOfCopy(source, target);
        if (OsFilePlatform::isSpecial(source.getChars()))
            throw OsFileEx::ExInvalidPath(__FILE__, __LINE__, source.getChars());
        OsFileReader reader(source);
        // Taken before reading, which is also an access.
        const Attributes attributes = attributesOf(reader._handle);
        OsFileWriter writer(destination, ownerAlone(), false);
        OsFileHandle::copyAll(reader._handle, writer._handle);
        setAttributes(writer._handle, attributes);
        writer.close();
        reader.close();
    }

    void enterDirectory(const OsFilePath& source, const OsFilePath& target) override
    {
        const OpenDirectory from(source, OsFileTypes::AccessRead);
        _attributes.push_back(attributesOf(from._handle));
        if (OsFsUtils::isDirectory(target.getChars())) return;
        constexpr int ALL =
            OsFileTypes::AccessRead | OsFileTypes::AccessWrite | OsFileTypes::AccessExecute;
        if (!OsFilePlatform::createDirectory(target.getChars(), {ALL, 0, 0})) ZU_RAISE_LAST_ERROR();
    }

    void leaveDirectory(const OsFilePath& target) override
    {
        const OpenDirectory to(target, OsFileTypes::AccessWrite);
        setAttributes(to._handle, _attributes.back());
        _attributes.pop_back();
    }

private:
    using Attributes = OsFilePlatform::Attributes;

    struct OpenDirectory
    {
        OpenDirectory(const OsFilePath& path, int access)
            : _handle(OsFilePlatform::openDirectory(path.getChars(), access))
        {
            if (_handle == OsFilePlatform::NONE) ZU_RAISE_LAST_ERROR();
        }
        OpenDirectory(const OpenDirectory&) = delete;
        OpenDirectory& operator=(const OpenDirectory&) = delete;
        ~OpenDirectory()
        {
            OsFilePlatform::close(_handle);
        }

        const OsFilePlatform::Handle _handle;
    };

    static Attributes attributesOf(OsFilePlatform::Handle handle)
    {
        Attributes attributes;
        if (!OsFilePlatform::attributesOf(handle, attributes)) ZU_RAISE_LAST_ERROR();
        return attributes;
    }

    static void setAttributes(OsFilePlatform::Handle handle, const Attributes& attributes)
    {
        if (!OsFilePlatform::setAttributes(handle, attributes)) ZU_RAISE_LAST_ERROR();
    }

    // The attributes of the directories that were entered.
    std::vector<Attributes> _attributes;
};

void OsFileTools::copyWithModesAndTimes(const OsFilePath& source, const OsFilePath& target)
{
    OsFileHandle::checkNotEmpty(source);
    KeepingCopier copier;
    if (OsFsUtils::isDirectory(source.getChars()))
        OsDirectory::copyTree(source, OsDirectory::destinationOfCopy(source, target), copier);
    else
        copier.copyFile(source, target);
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
    // Otherwise its contents would be gone by the time the system refuses it.
    if (!osEndsInName(path.getChars(), *OsFilePath::getSeparator()))
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
