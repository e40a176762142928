#include "base/rnHistogram.h"

namespace Zu
{

template class RnHistogram<float>;
template class RnHistogram<double>;
template class RnUniformHistogram<float>;
template class RnUniformHistogram<double>;

} // namespace Zu
