// A type without an insertion operator in a log statement.
// error: LgStream has no insertion operator for this type
// note: shop::Order
#include "base/lgEvent.h"

namespace shop
{
struct Order
{
};
} // namespace shop

ZU_DEFINE_LOG_GROUP(Orders);

void log(const shop::Order& order)
{
    ZU_LOG_WARNING(Orders, "an order: " << order << " and " << 1);
}
