/// @file
/// Thread-local values with a notification when the thread ends. Internal to the application kit.

#ifndef ZU_APP_THREADSLOT_H
#define ZU_APP_THREADSLOT_H

namespace Zu::ThreadSlot
{

/// What the values are for.
enum Slot
{
    Queue,
    Traces,
    Context,
    Count
};

/// Is notified of the end of a thread, with the thread's value.
using ThreadEnded = void (*)(void* value);

/// Sets the function that a thread calls when it ends and its value is not null. To be called once
/// for each slot, before any value is set. The function is not called for threads that are ended by
/// the end of the process.
void setThreadEnded(Slot slot, ThreadEnded ended);

/// The calling thread's value; null at first, and again during the notification of its end.
void* get(Slot slot);
void set(Slot slot, void* value);

} // namespace Zu::ThreadSlot

#endif
