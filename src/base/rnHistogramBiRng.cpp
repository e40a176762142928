#include "base/rnHistogramBiRng.h"

namespace Zu
{

template class RnHistogramBiRng<float>;
template class RnHistogramBiRng<double>;

} // namespace Zu
