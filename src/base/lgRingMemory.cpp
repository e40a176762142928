#include "base/lgRingMemory.h"

namespace Zu
{

LgRingMemory::~LgRingMemory() = default;

} // namespace Zu
