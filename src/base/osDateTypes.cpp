#include "base/osDateTypes.h"

namespace Zu
{

OsDateTypes::DateStruct::DateStruct(int year_, int month_, int day_, int hour_, int minute_,
                                    double second_, int dayOfWeek_)
    : year(year_), month(month_), day(day_), hour(hour_), minute(minute_), second(second_),
      dayOfWeek(dayOfWeek_)
{
}

} // namespace Zu
