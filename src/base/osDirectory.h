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

/// Makes, lists, empties and copies a directory. Operations on many files are no transactions: a
/// failure ends them, and what was done so far stays. What holds of OsFile holds here.
class ZU_BASE_API OsDirectory : public OsFile
{
    friend class OsFileTools;

public:
    /// The directory need not be there.
    explicit OsDirectory(const OsFilePath& path);
    OsDirectory(const OsDirectory&) = default;
    OsDirectory& operator=(const OsDirectory&) = default;
    ~OsDirectory() override;

    /// Removes the directory, which must be empty.
    void remove() override;

    /// Copies the directory with all that is in it to a new one of this path or, where a directory
    /// is there already, into that under the base name. A path with a separator at its end has an
    /// empty base name: OsDirectory("src/") copies what is in it straight into that directory.
    /// Raises OsFileEx::ExFileExists where something else is there, and what copyHierarchy() does.
    void copyTo(const OsFilePath& target) override;

    /// Makes the directory; one that is there already raises ExSysErrorWindows. The permissions,
    /// less the umask, are applied; Windows ignores them. Missing parents are never made.
    void create(const OsFileTypes::Permissions& permissions);

    /// The children that the filter accepts, in the order in which the system tells them.
    ObjPtrRet<Vector<OsFilePath>> getChildrenPath(OsFileTypes::PathTypes type,
                                                  const OsFileFilter& filter) const;

    /// The same as objects, an OsDirectory for each directory; the caller owns them.
    ObjPtrRet<Vector<OsFile*>> getChildren(const OsFileFilter& filter) const;

    /// Whether there is a child that the filter accepts.
    bool hasChildren(const OsFileFilter& filter) const;

    /// Removes the children that the filter accepts. It doesn't descend, so a directory with
    /// children of its own raises ExSysErrorWindows. Of a symbolic link, the link is removed.
    void removeChildren(const OsFileFilter& filter);

    /// Copies a file or a directory with all that is in it. Directories that are there already are
    /// copied into, files replaced. Symbolic links are followed. New files have the modes of
    /// OsFile::copyTo(); OsFileTools::copyWithModesAndTimes() keeps those of the source. What would
    /// never end raises OsFileEx::ExInvalidPath, before anything is made: where the target is the
    /// source or lies in it or in a directory that a link in the source leads to, and where such a
    /// link leads back to a directory that it lies in. So does a FIFO, a socket or a device in the
    /// directory. A link in the target that leads into the source is refused when it is met. Raises
    /// OsFileEx::ExNullFilePath for the empty path.
    static void copyHierarchy(const OsFilePath& source, const OsFilePath& target);

private:
    static OsFilePath destinationOfCopy(const OsFilePath& source, const OsFilePath& target);
    static void copyTree(const OsFilePath& source, const OsFilePath& target, OsTreeCopier& copier);
    template <class Accept> void scan(const OsFileFilter& filter, const Accept& accept) const;
};

} // namespace Zu

#endif
