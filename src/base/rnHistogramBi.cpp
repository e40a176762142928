#include "base/rnHistogramBi.h"

namespace Zu
{

template class RnHistogramBi<float>;
template class RnHistogramBi<double>;
template class RnUniformHistogramBi<float>;
template class RnUniformHistogramBi<double>;

} // namespace Zu
