/// @file
/// Values that each thread has of its own, with word of its end. Internal to the application kit.

#ifndef ZU_APP_THREADSLOT_H
#define ZU_APP_THREADSLOT_H

namespace Zu::ThreadSlot
{

/// What the values are for.
enum Slot
{
    QUEUE,
    TRACES,
    COUNT
};

/// Is told of the end of a thread, with its value.
using ThreadEnded = void (*)(void* value);

/// Says what is to be called, on the thread itself, when a thread ends whose value is not null; to
/// be called once for a slot, before any value is set. It is not called for threads that the end of
/// the process ends.
void setThreadEnded(Slot slot, ThreadEnded ended);

/// The calling thread's value; null at first, and again while its end is told.
void* get(Slot slot);
void set(Slot slot, void* value);

} // namespace Zu::ThreadSlot

#endif
