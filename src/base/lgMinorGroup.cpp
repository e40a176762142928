#include "base/lgMinorGroup.h"

#include "base/assertions.h"

#include <cstddef>
#include <cstring>

namespace Zu
{

LgMinorGroup::LgMinorGroup(const LgMajorGroup& group, const char* n) : _group(&group), _name(n)
{
    ZU_ASSERT(n);
    const std::size_t length = std::strlen(n);
    if (length >= sizeof _prefix) return;
    std::memcpy(_prefix, n, length);
    _prefix[length] = ' ';
    _prefixLength = static_cast<std::uint32_t>(length + 1);
}

// At the edge of the ring the name and the blank find room or none, each for itself.
void LgMinorGroup::insertNameInPieces(LgStream& stream) const
{
    stream << _name << ' ';
}

} // namespace Zu
