#include "base/dbgLibraryBuildInfo.h"

namespace Zu
{

namespace
{

// The compiler takes the date from SOURCE_DATE_EPOCH if that is set.
constexpr DbgBuildText TEXT = {"Corvane",
                               0,
                               2,
                               "pre-alpha",
                               "libZUbase",
                               ZU_BUILD_STAMP_LONG,
                               ZU_BUILD_STAMP_SHORT,
                               __DATE__,
                               ZU_BUILD_CONFIGURATION,
                               ZU_BUILT_BY,
                               DbgBuildText::UNKNOWN};

} // namespace

LibraryBuildInfo::LibraryBuildInfo() : DbgTextBuildInfo(TEXT) {}

} // namespace Zu
