/// @file
/// What the log service asks of the platform. Internal to the application kit.

#ifndef ZU_APP_LGSERVICEPLATFORM_H
#define ZU_APP_LGSERVICEPLATFORM_H

#include <memory>

namespace Zu::LgServicePlatform
{

/// Whether barrier() works here. Asked once, before it is called.
bool prepareBarrier();

/// Makes every other thread of the process pass a full memory barrier; false if the system refuses,
/// as it may do for want of memory.
bool barrier();

/// Sleeps for a tenth of a millisecond, or not at all and false where a sleep takes much longer.
bool nap();

/// Sees to it that a child of a fork finds what `prepare` has locked as `child` leaves it. Where
/// there is no fork, nothing happens.
void onFork(void (*prepare)(), void (*parent)(), void (*child)());

/// While one lives, threads that are started get no signals that the process might handle.
class SignalBlock
{
public:
    SignalBlock();
    SignalBlock(const SignalBlock&) = delete;
    SignalBlock& operator=(const SignalBlock&) = delete;
    ~SignalBlock();

private:
    struct Saved;
    std::unique_ptr<Saved> _saved;
};

} // namespace Zu::LgServicePlatform

#endif
