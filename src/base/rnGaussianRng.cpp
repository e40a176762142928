#include "base/rnGaussianRng.h"

namespace Zu
{

template class RnGaussianRng<float>;
template class RnGaussianRng<double>;

} // namespace Zu
