// One that logs, and keeps account of it.

#ifndef ZU_TESTS_STRESS_PRODUCER_H
#define ZU_TESTS_STRESS_PRODUCER_H

#include "stress/account.h"

namespace stress
{

// The group that all events of this suite belong to stands for the life of an object.
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

    // So many, as fast as they come.
    void log(unsigned count);

    // So many, of which the reader has all whenever a burst is over.
    void logInBursts(unsigned count, unsigned burst);

    // Waits until the reader has all events of this thread.
    static void awaitReader();

    // Without what the library counts.
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
