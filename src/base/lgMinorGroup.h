/// @file
/// The handle that call sites of the logger check.

#ifndef ZU_BASE_LGMINORGROUP_H
#define ZU_BASE_LGMINORGROUP_H

#include "baseApi.h"
#include "lgMajorGroup.h"
#include "lgStream.h"
#include "lgTypes.h"

#include <cstdint>

namespace Zu
{

/// A subsystem's own handle to a major group, with the short name that precedes its messages.
/// Changes of the major group take effect at once. Any thread may query it.
class ZU_BASE_API LgMinorGroup
{
public:
    /// Both arguments must outlive the handle; the name is stored as a pointer, and its text must
    /// stay as it is. Raises ExInternalError "Assertion 'n' failed." for a null name.
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

    /// Inserts what precedes each message: the name and a blank.
    void insertName(LgStream& stream) const
    {
        if (_prefixLength == 0 || !stream.insertPadded(_prefix, _prefixLength))
            insertNameInPieces(stream);
    }

private:
    void insertNameInPieces(LgStream& stream) const;

    const LgMajorGroup* _group;
    const char* _name;
    // The name and the blank, so that no event measures them. Without text and of length 0 if the
    // name is too long.
    char _prefix[LgStream::PADDED_SIZE] = {};
    std::uint32_t _prefixLength = 0;
};

} // namespace Zu

#endif
