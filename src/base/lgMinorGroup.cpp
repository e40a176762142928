#include "base/lgMinorGroup.h"

#include "base/assertions.h"

namespace Zu
{

LgMinorGroup::LgMinorGroup(const LgMajorGroup& group, const char* n) : _group(&group), _name(n)
{
    ZU_ASSERT(n);
}

} // namespace Zu
