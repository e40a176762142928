// A producer of events that keeps count of them.

#ifndef ZU_TESTS_STRESS_PRODUCER_H
#define ZU_TESTS_STRESS_PRODUCER_H

#include "stress/account.h"

namespace stress
{

// Starts the group of all events of this suite, and stops it when destroyed.
class Group
{
public:
    Group();
    Group(const Group&) = delete;
    Group& operator=(const Group&) = delete;
    ~Group();
};

// Belongs to one thread, in which a service runs.
class Producer
{
public:
    explicit Producer(unsigned id) : _id(id) {}

    // The statement alone; it needs no service.
    static void state(unsigned id, unsigned number);

    // One event.
    void log();

    // This many, as fast as possible.
    void log(unsigned count);

    // This many; after each burst the reader has them all.
    void logInBursts(unsigned count, unsigned burst);

    // Waits until the reader has all events of this thread.
    static void awaitReader();

    // Without the library's own counts.
    const Account& account() const
    {
        return _account;
    }

private:
    unsigned _id;
    unsigned _number = 0;
    Account _account;
};

} // namespace stress

#endif
