/// @file
/// A directory.

#ifndef ZU_BASE_OSDIRECTORY_H
#define ZU_BASE_OSDIRECTORY_H

#include "baseApi.h"
#include "containers.h"
#include "objPtr.h"
#include "osFile.h"
#include "osFileFilter.h"
#include "osFilePath.h"
#include "osFileTypes.h"

namespace Zu
{

class OsTreeCopier;

/// Makes, lists, empties and copies a directory. Operations on many files are not transactions: a
/// failure ends them, and what was done so far stays. What OsFile documents applies here, too.
class ZU_BASE_API OsDirectory : public OsFile
{
    friend class OsFileTools;

public:
    /// The directory need not exist.
    explicit OsDirectory(const OsFilePath& path);
    OsDirectory(const OsDirectory&) = default;
    OsDirectory& operator=(const OsDirectory&) = default;
    ~OsDirectory() override;

    /// Removes the directory, which must be empty.
    void remove() override;

    /// Copies the directory with its contents to a new one of this path or, if a directory exists
    /// there, into that one under the base name. A path that ends in a separator has an empty base
    /// name: OsDirectory("src/") copies its contents straight into that directory. Raises
    /// OsFileEx::ExFileExists if something else exists there, and whatever copyHierarchy() raises.
    void copyTo(const OsFilePath& target) override;

    /// Makes the directory; raises ExSysErrorWindows if it exists already. The permissions, less
    /// the umask, are applied; Windows ignores them. Missing parents are never made.
    void create(const OsFileTypes::Permissions& permissions);

    /// The children that the filter accepts, in the order in which the system lists them.
    ObjPtrRet<Vector<OsFilePath>> getChildrenPath(OsFileTypes::PathTypes type,
                                                  const OsFileFilter& filter) const;

    /// The same children as objects, with an OsDirectory for each directory; the caller owns them.
    ObjPtrRet<Vector<OsFile*>> getChildren(const OsFileFilter& filter) const;

    /// Whether there is a child that the filter accepts.
    bool hasChildren(const OsFileFilter& filter) const;

    /// Removes the children that the filter accepts. It doesn't descend, so a directory with
    /// children of its own raises ExSysErrorWindows. A symbolic link is itself removed.
    void removeChildren(const OsFileFilter& filter);

    /// Copies a file, or a directory with its contents. Existing directories are copied into,
    /// existing files are replaced. Symbolic links are followed. New files have the modes of
    /// OsFile::copyTo(); OsFileTools::copyWithModesAndTimes() keeps those of the source.
    ///
    /// A copy that would never end raises OsFileEx::ExInvalidPath before anything is made: if the
    /// target is the source or is inside it, if it is inside a directory that a link in the source
    /// leads to, or if such a link leads back to a directory that contains it. So does a FIFO, a
    /// socket or a device in the directory. A link in the target that leads into the source is
    /// refused when it is reached. Raises OsFileEx::ExNullFilePath for the empty path.
    static void copyHierarchy(const OsFilePath& source, const OsFilePath& target);

private:
    static OsFilePath destinationOfCopy(const OsFilePath& source, const OsFilePath& target);
    static void copyTree(const OsFilePath& source, const OsFilePath& target, OsTreeCopier& copier);
    template <class Accept> void scan(const OsFileFilter& filter, const Accept& accept) const;
};

} // namespace Zu

#endif
