#include "app/apLogGroup.h"

namespace Zu
{

namespace
{

// For statements before the start.
const LgMajorGroup& earlyGroup()
{
    static const LgMajorGroup* const theGroup = new LgMajorGroup;
    return *theGroup;
}

} // namespace

ApLogGroup::ApLogGroup(ApPackage& package, const char* major, const char* name,
                       LgMinorGroup*& handle)
    : _package(package), _major(major), _name(name), _handle(handle),
      _early(new LgMinorGroup(earlyGroup(), name))
{
    _package.add(*this);
    _handle = _early;
}

ApLogGroup::~ApLogGroup()
{
    _package.remove(*this);
}

void ApLogGroup::start()
{
    const LgMajorGroup& group = LgMajorGroup::getInstanceForName(_major);
    // A major group is the same object after a new start.
    if (!_started) _started = new LgMinorGroup(group, _name);
    _handle = _started;
}

// Statements may follow, so their group stays.
void ApLogGroup::stop() noexcept {}

} // namespace Zu
