/// @file
/// A log group that starts and stops with its package.

#ifndef ZU_APP_APLOGGROUP_H
#define ZU_APP_APLOGGROUP_H

#include "../base/lgEvent.h"
#include "../base/lgMajorGroup.h"
#include "../base/lgMinorGroup.h"
#include "../base/xGlue.h"
#include "apPackage.h"
#include "appApi.h"

namespace Zu
{

/// The object behind ZU_LOG_GROUP. Statements of the group may be executed at any time:
///
/// - until its package starts, they write to standard output, from Warning upwards;
/// - while the package is up, the major group decides, and they go where the logger sends them;
/// - after that the major group still decides. When the log service has ended, they write to
///   standard output, as all statements do without a service.
///
/// What statements refer to is never destroyed, so destructors of static objects may log.
///
/// Thread-safety: any thread may execute statements, but none while the package starts, since that
/// changes the handle.
class ZU_APP_API ApLogGroup : public ApPart
{
public:
    /// The texts and `handle`, which statements read, must outlive the object. From here on
    /// `handle` is never null.
    ApLogGroup(ApPackage& package, const char* major, const char* name, LgMinorGroup*& handle);
    ~ApLogGroup() override;
    void start() override;
    void stop() noexcept override;

private:
    ApPackage& _package;
    const char* _major;
    const char* _name;
    LgMinorGroup*& _handle;
    // What the handle was before the start: another thread may still use it.
    LgMinorGroup* _early;
    // What it is from the first start on.
    LgMinorGroup* _started = nullptr;
};

} // namespace Zu

/// Defines a minor group that starts and stops with a package made by ZU_PACKAGE, in one source
/// file: the group's name, the major group's, and the tag of the package.
///
/// @code
/// ZU_PACKAGE(shop, "shop");
/// ZU_LOG_GROUP(Orders, "Shop", shop);
/// @endcode
///
/// The package must be one of the same module. Other source files declare the group with
/// ZU_DECLARE_LOG_GROUP.
#define ZU_LOG_GROUP(name, major, package)                                                         \
    ZU_DEFINE_LOG_GROUP(name);                                                                     \
    static ::Zu::ApLogGroup ZU_XGLUE(theApLogGroup, name)(::Zu::packageOf<package>(), major,       \
                                                          #name, ZU_XGLUE(MinorLevel, name))

#endif
