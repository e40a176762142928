#include "base/rnHistogramRng.h"

namespace Zu
{

template class RnHistogramRng<float>;
template class RnHistogramRng<double>;

} // namespace Zu
