/// @file
/// The library's own build record. Internal to the library.

#ifndef ZU_BASE_DBGLIBRARYBUILDINFO_H
#define ZU_BASE_DBGLIBRARYBUILDINFO_H

#include "dbgBuildText.h"

namespace Zu
{

/// The record that the package "base" registers; its constants come from the build.
class LibraryBuildInfo : public DbgTextBuildInfo
{
public:
    LibraryBuildInfo();
};

} // namespace Zu

#endif
