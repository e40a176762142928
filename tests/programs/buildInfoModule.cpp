// A module of the family with a build record. Macros select its variants: another version of the
// API, another build, or otherwise one that matches the library.

#include "base/dbgBuildText.h"

namespace
{

constexpr Zu::DbgBuildText text = {
    "Corvane",
    0,
#if defined(BUILD_INFO_OTHER_VERSION)
    3,
    "pre-alpha",
    "libZUbuildInfoOtherVersion",
    "ProductRV-Corvane_187",
    "P. 187",
#elif defined(BUILD_INFO_OTHER_STAMP)
    2,
    "pre-alpha",
    "libZUbuildInfoOtherStamp",
    "ProductRV-Corvane_188",
    "P. 188",
#else
    2,
    "pre-alpha",
    "libZUbuildInfoSame",
    "ProductRV-Corvane_187",
    "P. 187",
#endif
    "Jun 15 2012",
};

} // namespace

ZU_EXPORT_BUILD_INFO(text);
