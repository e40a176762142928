#include "app/lgContext.h"

#include "app/lgServicePlatform.h"
#include "app/lgSuffix.h"

namespace Zu
{

void LgContext::nameThread(std::string_view name)
{
    LgSuffix::nameThread(name);
    if (!name.empty()) LgServicePlatform::nameThread(std::string(name));
}

std::size_t LgContext::push(std::string_view name, std::string_view value)
{
    return LgSuffix::push(name, value);
}

void LgContext::pop(std::size_t before) noexcept
{
    LgSuffix::pop(before);
}

} // namespace Zu
