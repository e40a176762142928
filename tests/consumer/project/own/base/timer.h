/// @file
/// The project's own timer, in a header that is called like one of the library's.

#ifndef CONSUMER_TIMER_H
#define CONSUMER_TIMER_H

namespace own
{

struct Timer
{
    int _ticks = 7;
};

} // namespace own

#endif
