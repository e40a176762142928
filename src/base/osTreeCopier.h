/// @file
/// How a directory is copied, one step at a time. Internal to the library.

#ifndef ZU_BASE_OSTREECOPIER_H
#define ZU_BASE_OSTREECOPIER_H

#include "osFilePath.h"

namespace Zu
{

/// Copies what a walk through a directory visits. Targets are the full new names.
class OsTreeCopier
{
public:
    virtual void copyFile(const OsFilePath& source, const OsFilePath& target) = 0;

    /// Makes the directory, unless it is there.
    virtual void enterDirectory(const OsFilePath& source, const OsFilePath& target) = 0;

    /// Finishes the directory that was entered last.
    virtual void leaveDirectory(const OsFilePath& target) = 0;

protected:
    ~OsTreeCopier() = default;
};

} // namespace Zu

#endif
