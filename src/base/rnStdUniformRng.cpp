#include "base/rnStdUniformRng.h"

namespace Zu
{

template class RnStdUniformRng<float>;
template class RnStdUniformRng<double>;

} // namespace Zu
