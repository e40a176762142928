/// @file
/// Filters for the children of a directory.

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

    /// Whether the child is wanted. The path is that of the directory with the child's name, so
    /// that the file system can be asked about it.
    virtual bool filter(const OsFilePath& path) const = 0;
};

/// Accepts everything.
class ZU_BASE_API OsPassThroughFilter : public OsFileFilter
{
public:
    ~OsPassThroughFilter() override;
    bool filter(const OsFilePath& path) const override;
};

/// Accepts directories.
class ZU_BASE_API OsDirectoryFilter : public OsFileFilter
{
public:
    ~OsDirectoryFilter() override;
    bool filter(const OsFilePath& path) const override;
};

/// Accepts whatever is not a directory and, if a suffix is given, has a name that ends in it. Case
/// matters, and the suffix may be the whole name.
class ZU_BASE_API OsLeafFileFilter : public OsFileFilter
{
public:
    /// Without a suffix.
    OsLeafFileFilter();

    /// Copies the suffix; null means none.
    explicit OsLeafFileFilter(const char* suffix);
    ~OsLeafFileFilter() override;
    bool filter(const OsFilePath& path) const override;

private:
    ArrayPtr<char> _suffix;
    int _suffixLength;
};

} // namespace Zu

#endif
