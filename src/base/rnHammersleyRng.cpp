#include "base/rnHammersleyRng.h"

namespace Zu
{

template class RnHammersleyMultiRng<float, 2>;
template class RnHammersleyMultiRng<float, 3>;
template class RnHammersleyMultiRng<double, 2>;
template class RnHammersleyMultiRng<double, 3>;
template class RnHammersleyBiRng<float>;
template class RnHammersleyBiRng<double>;

} // namespace Zu
