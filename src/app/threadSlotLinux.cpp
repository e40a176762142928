#include "app/threadSlot.h"

#include <cerrno>
#include <new>
#include <pthread.h>
#include <system_error>

namespace Zu::ThreadSlot
{

namespace
{

// Read for every event, so they are kept apart from the keys, which only serve to notify the end.
// The build fixes their place when the library is loaded, which saves each read a call of the
// dynamic linker. If a module that needs the library is loaded at run time, they take room that the
// linker keeps for all such libraries together: a few pointers always fit, more do not belong here.
constinit thread_local void* values[Count] = {};

pthread_key_t keys[Count];
ThreadEnded threadEnded[Count] = {};

template <Slot slot> void keyEnded(void* value)
{
    values[slot] = nullptr;
    threadEnded[slot](value);
}

constexpr ThreadEnded KEY_ENDED[Count] = {&keyEnded<Queue>, &keyEnded<Traces>, &keyEnded<Context>};

} // namespace

void setThreadEnded(Slot slot, ThreadEnded ended)
{
    threadEnded[slot] = ended;
    const int code = pthread_key_create(&keys[slot], KEY_ENDED[slot]);
    if (code != 0) throw std::system_error(code, std::generic_category(), "pthread_key_create");
}

void* get(Slot slot)
{
    return values[slot];
}

void set(Slot slot, void* value)
{
    const int code = pthread_setspecific(keys[slot], value);
    if (code == ENOMEM) throw std::bad_alloc();
    if (code != 0) throw std::system_error(code, std::generic_category(), "pthread_setspecific");
    values[slot] = value;
}

} // namespace Zu::ThreadSlot
