// An optional value whose type has no insertion operator.
// error: LgStream has no insertion operator for this type
// note: shop::Order
#include "base/lgEvent.h"
#include "base/lgStdText.h"

namespace shop
{
struct Order
{
};
} // namespace shop

ZU_DEFINE_LOG_GROUP(Orders);

void log(const std::optional<shop::Order>& order)
{
    ZU_LOG_WARNING(Orders, order);
}
