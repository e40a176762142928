#include "base/lgTypes.h"

#include "base/assertions.h"
#include "base/lgEx.h"

#include <cstring>

namespace Zu
{

namespace
{

constexpr const char* LEVEL_NAMES[] = {"Internal Error", "Fatal Error", "Error",    "Warning",
                                       "Informational",  "Tracing",     "Profiling"};

static_assert(sizeof LEVEL_NAMES / sizeof LEVEL_NAMES[0] == LgTypes::NUM_LEVELS);

} // namespace

const char* LgTypes::levelToString(Level l)
{
    ZU_ASSERT_TEXT(l >= 0 && l < NUM_LEVELS, "l < NUM_LEVELS");
    return LEVEL_NAMES[l];
}

LgTypes::Level LgTypes::stringToLevel(const char* s)
{
    ZU_ASSERT(s);
    for (int level = 0; level < NUM_LEVELS; ++level)
        if (std::strcmp(s, LEVEL_NAMES[level]) == 0) return static_cast<Level>(level);
    throw LgEx::InvalidLevelString(__FILE__, __LINE__, s);
}

} // namespace Zu
