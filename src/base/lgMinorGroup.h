/// @file
/// The handle that call sites of the logger check.

#ifndef ZU_BASE_LGMINORGROUP_H
#define ZU_BASE_LGMINORGROUP_H

#include "baseApi.h"
#include "lgMajorGroup.h"
#include "lgTypes.h"

namespace Zu
{

/// A subsystem's own handle to a major group, with the short name that precedes its messages.
/// Changes of the major group take effect at once. Any thread may query it.
class ZU_BASE_API LgMinorGroup
{
public:
    /// Both arguments must outlive the handle; the name is stored as a pointer. Raises
    /// ExInternalError "Assertion 'n' failed." for a null name.
    LgMinorGroup(const LgMajorGroup& group, const char* n);

    /// Whether events of this level are produced at all; `level` is not checked. It costs one load,
    /// one AND and one branch, and no text is made before it has returned true.
    bool isLevelEnabled(LgTypes::Level level) const
    {
        return (_group->getLogLevels() & LgTypes::levelBit[level]) != 0;
    }

    /// The name.
    const char* getName() const
    {
        return _name;
    }

private:
    const LgMajorGroup* _group;
    const char* _name;
};

} // namespace Zu

#endif
