// An enumerator without the header for it.
// error: LgStream has no insertion operator for this type
// note: shop::State
#include "base/lgEvent.h"

namespace shop
{
enum class State
{
    OPEN
};
} // namespace shop

ZU_DEFINE_LOG_GROUP(Orders);

void log()
{
    ZU_LOG_WARNING(Orders, shop::State::OPEN);
}
