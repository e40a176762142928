/// @file
/// A build record made of constant texts, and its export from a module.

#ifndef ZU_BASE_DBGBUILDTEXT_H
#define ZU_BASE_DBGBUILDTEXT_H

#include "baseApi.h"
#include "dbgBuildInfo.h"

namespace Zu
{

/// The contents of a build record as constants of the build. A text that is not given is
/// "[Information not available]".
struct DbgBuildText
{
    /// Stands for a text that is not given.
    static constexpr const char* UNKNOWN = "[Information not available]";

    /// See DbgBuildInfo::getApiName().
    const char* _apiName;
    /// See DbgBuildInfo::getMajorVersion().
    int _majorVersion;
    /// See DbgBuildInfo::getMinorVersion().
    int _minorVersion;
    /// See DbgBuildInfo::getVersionLabel().
    const char* _versionLabel;
    /// See DbgBuildInfo::getLibraryName(); one text for both forms.
    const char* _libraryName;
    /// The verbose DbgBuildInfo::getBuildStamp().
    const char* _longStamp = UNKNOWN;
    /// The short stamp, by which stamps are compared.
    const char* _shortStamp = UNKNOWN;
    /// See DbgBuildInfo::getBuildDate(); one text for both forms, as for the members below.
    const char* _date = UNKNOWN;
    /// See DbgBuildInfo::getBuildConfiguration().
    const char* _configuration = UNKNOWN;
    /// See DbgBuildInfo::getBuiltBy().
    const char* _builtBy = UNKNOWN;
    /// See DbgBuildInfo::getBuildNotes().
    const char* _notes = UNKNOWN;
};

/// A build record made of such constants, which are kept as pointers.
class ZU_BASE_API DbgTextBuildInfo : public DbgBuildInfo
{
public:
    /// The texts must outlive the record.
    explicit DbgTextBuildInfo(const DbgBuildText& text);
    ~DbgTextBuildInfo() override;

    const char* getApiName() const override;
    int getMajorVersion() const override;
    int getMinorVersion() const override;
    const char* getVersionLabel() const override;
    const char* getLibraryName(bool verbose) const override;
    const char* getBuildStamp(bool verbose) const override;
    const char* getBuildDate(bool verbose) const override;
    const char* getBuildConfiguration(bool verbose) const override;
    const char* getBuiltBy(bool verbose) const override;
    const char* getBuildNotes(bool verbose) const override;

private:
    DbgBuildText _text;
};

} // namespace Zu

/// Exports the function that DbgBuildInfoUtil::registerModule() looks up. Used once in a module,
/// outside any namespace:
///
/// @code
/// constexpr Zu::DbgBuildText text = {"Sample", 1, 4, "beta", "libZUsample", "Sample_12", "S. 12"};
/// ZU_EXPORT_BUILD_INFO(text);
/// @endcode
#define ZU_EXPORT_BUILD_INFO(text)                                                                 \
    extern "C" ZU_MODULE_EXPORT ::Zu::DbgBuildInfo* getBuildInfo();                                \
    extern "C" ::Zu::DbgBuildInfo* getBuildInfo()                                                  \
    {                                                                                              \
        return new ::Zu::DbgTextBuildInfo(text);                                                   \
    }                                                                                              \
    static_assert(true)

#endif
