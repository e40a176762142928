#include "base/osDirectory.h"

#include "base/exRaise.h"
#include "base/osFileEx.h"
#include "base/osFileHandle.h"
#include "base/osFilePlatform.h"
#include "base/osFsUtils.h"
#include "base/osTreeCopier.h"

#include <memory>
#include <string>
#include <vector>

namespace Zu
{

namespace
{

using OsFileHandle::checkNotEmpty;
using OsFilePlatform::Scan;

[[noreturn]] void refuse(const OsFilePath& path)
{
    throw OsFileEx::ExInvalidPath(__FILE__, __LINE__, path.getChars());
}

// What precedes the last element, by the text alone. Only the system can tell where a step up from
// a link leads.
std::string parentOf(const std::string& path)
{
    static const std::string separators = std::string(OsFilePath::getSeparator()) + "/";
    const std::size_t last = path.find_last_not_of(separators);
    if (last == std::string::npos) return "";
    const std::size_t end = path.find_last_of(separators, last);
    if (end == std::string::npos) return "";
    const std::size_t before = path.find_last_not_of(separators, end);
    // A root keeps its separator: without it, a drive means its current directory.
    if (before == std::string::npos || path[before] == ':') return path.substr(0, end + 1);
    return path.substr(0, before + 1);
}

// The deepest part of a path that exists, resolved.
std::string nearestExisting(const OsFilePath& path)
{
    std::string place = path.getChars();
    while (!place.empty() && !OsFsUtils::fileExists(place.c_str())) place = parentOf(place);
    return OsFilePlatform::resolved(place.empty() ? "." : place.c_str());
}

// Whether a path, which may not exist yet, is the directory or is inside it.
bool isWithin(const OsFilePath& path, const OsFilePath& directory)
{
    for (std::string place = nearestExisting(path); !place.empty(); place = parentOf(place))
        if (OsFilePlatform::isSame(place.c_str(), directory.getChars())) return true;
    return false;
}

// Walks through a directory, following links as the copy will. Refuses what would never end (a
// directory inside itself, or one in which the copy would be made), and what is not a file.
class HierarchyCheck
{
public:
    explicit HierarchyCheck(const OsFilePath& target) : _target(target) {}

    void check(const OsFilePath& directory)
    {
        const bool isLink = OsFilePlatform::isLink(directory.getChars());
        if ((isLink || _ancestors.empty()) && isWithin(_target, directory)) refuse(_target);
        _links += isLink ? 1 : 0;
        if (_links > 0)
            for (const OsFilePath* ancestor : _ancestors)
                if (OsFilePlatform::isSame(ancestor->getChars(), directory.getChars()))
                    refuse(directory);
        const ObjPtr<Vector<OsFilePath>> children =
            OsDirectory(directory).getChildrenPath(OsFileTypes::PathFull, OsPassThroughFilter());
        _ancestors.push_back(&directory);
        for (const OsFilePath& child : *children)
            if (OsFsUtils::isDirectory(child.getChars()))
                check(child);
            else if (OsFilePlatform::isSpecial(child.getChars()))
                refuse(child);
        _ancestors.pop_back();
        _links -= isLink ? 1 : 0;
    }

private:
    const OsFilePath& _target;
    std::vector<const OsFilePath*> _ancestors;
    int _links = 0;
};

// What exists at the target may be a link into the source, whose root is given.
void walk(const OsFilePath& source, const OsFilePath& target, const OsFilePath& root,
          OsTreeCopier& copier)
{
    if (OsFsUtils::fileExists(target.getChars()) && isWithin(target, root)) refuse(target);
    if (!OsFsUtils::isDirectory(source.getChars()))
    {
        copier.copyFile(source, target);
        return;
    }
    copier.enterDirectory(source, target);
    const ObjPtr<Vector<OsFilePath>> names =
        OsDirectory(source).getChildrenPath(OsFileTypes::PathRelative, OsPassThroughFilter());
    for (const OsFilePath& name : *names) walk(source + name, target + name, root, copier);
    copier.leaveDirectory(target);
}

// Copies only the content.
class PlainCopier final : public OsTreeCopier
{
public:
    void copyFile(const OsFilePath& source, const OsFilePath& target) override
    {
        OsFile(source).copyTo(target);
    }

    void enterDirectory(const OsFilePath&, const OsFilePath& target) override
    {
        OsFsUtils::createDir(target.getChars(), true);
    }

    void leaveDirectory(const OsFilePath&) override {}
};

} // namespace

OsDirectory::OsDirectory(const OsFilePath& path) : OsFile(path) {}

OsDirectory::~OsDirectory() = default;

void OsDirectory::create(const OsFileTypes::Permissions& permissions)
{
    checkNotEmpty(getPath());
    if (!OsFilePlatform::createDirectory(getPath().getChars(), permissions)) ZU_RAISE_LAST_ERROR();
}

void OsDirectory::remove()
{
    checkNotEmpty(getPath());
    if (!OsFilePlatform::removeDirectory(getPath().getChars())) ZU_RAISE_LAST_ERROR();
}

// Passes on the name of each child that the filter accepts, until `accept` refuses one.
template <class Accept>
void OsDirectory::scan(const OsFileFilter& filter, const Accept& accept) const
{
    checkNotEmpty(getPath());
    Scan entries(getPath().getChars());
    const char* name = nullptr;
    Scan::Result result;
    while ((result = entries.next(name)) == Scan::Result::Name)
        if (filter.filter(getPath() + name) && !accept(name)) return;
    if (result == Scan::Result::Failed) ZU_RAISE_LAST_ERROR();
}

ObjPtrRet<Vector<OsFilePath>> OsDirectory::getChildrenPath(OsFileTypes::PathTypes type,
                                                           const OsFileFilter& filter) const
{
    ObjPtr<Vector<OsFilePath>> paths(new Vector<OsFilePath>);
    scan(filter,
         [&](const char* name)
         {
             paths->push_back(type == OsFileTypes::PathFull ? getPath() + name : OsFilePath(name));
             return true;
         });
    return paths;
}

ObjPtrRet<Vector<OsFile*>> OsDirectory::getChildren(const OsFileFilter& filter) const
{
    const ObjPtr<Vector<OsFilePath>> paths = getChildrenPath(OsFileTypes::PathFull, filter);
    // They are owned here until all are made.
    std::vector<std::unique_ptr<OsFile>> made;
    ObjPtr<Vector<OsFile*>> children(new Vector<OsFile*>);
    children->reserve(paths->size());
    for (const OsFilePath& path : *paths)
    {
        if (OsFsUtils::isDirectory(path.getChars()))
            made.push_back(std::make_unique<OsDirectory>(path));
        else
            made.push_back(std::make_unique<OsFile>(path));
    }
    for (std::unique_ptr<OsFile>& child : made) children->push_back(child.release());
    return children;
}

bool OsDirectory::hasChildren(const OsFileFilter& filter) const
{
    bool isAny = false;
    scan(filter,
         [&isAny](const char*)
         {
             isAny = true;
             return false;
         });
    return isAny;
}

void OsDirectory::removeChildren(const OsFileFilter& filter)
{
    const ObjPtr<Vector<OsFilePath>> paths = getChildrenPath(OsFileTypes::PathFull, filter);
    for (const OsFilePath& path : *paths)
        if (OsFilePlatform::isLink(path.getChars()))
        {
            if (!OsFilePlatform::removeLink(path.getChars())) ZU_RAISE_LAST_ERROR();
        }
        else if (OsFsUtils::isDirectory(path.getChars()))
            OsFsUtils::removeDir(path.getChars());
        else
            OsFsUtils::deleteFile(path.getChars());
}

void OsDirectory::copyTree(const OsFilePath& source, const OsFilePath& target, OsTreeCopier& copier)
{
    if (OsFsUtils::isDirectory(source.getChars())) HierarchyCheck(target).check(source);
    walk(source, target, source, copier);
}

void OsDirectory::copyHierarchy(const OsFilePath& source, const OsFilePath& target)
{
    checkNotEmpty(source);
    checkNotEmpty(target);
    PlainCopier copier;
    copyTree(source, target, copier);
}

OsFilePath OsDirectory::destinationOfCopy(const OsFilePath& source, const OsFilePath& target)
{
    checkNotEmpty(source);
    checkNotEmpty(target);
    if (!OsFsUtils::fileExists(target.getChars())) return target;
    if (!OsFsUtils::isDirectory(target.getChars()))
        throw OsFileEx::ExFileExists(__FILE__, __LINE__);
    return target + source.getBaseName();
}

void OsDirectory::copyTo(const OsFilePath& target)
{
    const OsFilePath destination = destinationOfCopy(getPath(), target);
    copyHierarchy(getPath(), destination);
}

} // namespace Zu
