/// @file
/// The project's own event, in a header that is called like one of the library's.

#ifndef CONSUMER_EVENT_H
#define CONSUMER_EVENT_H

namespace own
{

struct Event
{
    int _number = 9;
};

} // namespace own

#endif
