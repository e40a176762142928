#include "base/rnDirectionalHistogram.h"

namespace Zu
{

template class RnDirectionalHistogram<float, RnSphericalRange>;
template class RnDirectionalHistogram<double, RnSphericalRange>;
template class RnDirectionalHistogram<float, RnHemisphericalRange>;
template class RnDirectionalHistogram<double, RnHemisphericalRange>;
template class RnHistogramSpherical<float>;
template class RnHistogramSpherical<double>;
template class RnHistogramHemispherical<float>;
template class RnHistogramHemispherical<double>;

} // namespace Zu
