#include "base/hwCounterEng.h"

namespace Zu
{

HwCounterEng::~HwCounterEng() = default;

} // namespace Zu
