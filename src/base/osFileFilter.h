/// @file
/// Which children of a directory are wanted.

#ifndef ZU_BASE_OSFILEFILTER_H
#define ZU_BASE_OSFILEFILTER_H

#include "arrayPtr.h"
#include "baseApi.h"
#include "osFilePath.h"

namespace Zu
{

/// Chooses among the children of a directory.
class ZU_BASE_API OsFileFilter
{
public:
    OsFileFilter() = default;
    OsFileFilter(const OsFileFilter&) = delete;
    OsFileFilter& operator=(const OsFileFilter&) = delete;
    virtual ~OsFileFilter();

    /// Whether the child is wanted. The path is the directory's with the child's name, so the file
    /// system can be asked about it.
    virtual bool filter(const OsFilePath& path) const = 0;
};

/// Everything.
class ZU_BASE_API OsPassThroughFilter : public OsFileFilter
{
public:
    ~OsPassThroughFilter() override;
    bool filter(const OsFilePath& path) const override;
};

/// Directories.
class ZU_BASE_API OsDirectoryFilter : public OsFileFilter
{
public:
    ~OsDirectoryFilter() override;
    bool filter(const OsFilePath& path) const override;
};

/// What is no directory and, if a suffix is given, has a name that ends in it; letter case counts,
/// and the whole name may be the suffix.
class ZU_BASE_API OsLeafFileFilter : public OsFileFilter
{
public:
    /// Without a suffix.
    OsLeafFileFilter();

    /// Copies the suffix; null is none.
    explicit OsLeafFileFilter(const char* suffix);
    ~OsLeafFileFilter() override;
    bool filter(const OsFilePath& path) const override;

private:
    ArrayPtr<char> _suffix;
    int _suffixLength;
};

} // namespace Zu

#endif
