#include "stress/producer.h"

#include "base/lgEvent.h"

#include <algorithm>
#include <thread>

namespace stress
{

ZU_DEFINE_LOG_GROUP(Stress);

Group::Group()
{
    ZU_START_LOG_GROUP("Stress", Stress);
}

Group::~Group()
{
    ZU_STOP_LOG_GROUP(Stress);
}

void Producer::state(unsigned id, unsigned number)
{
    ZU_LOG_WARNING(Stress, id << ' ' << number << ' ' << fillerOf(id, number) << ' ' << number);
}

void Producer::log()
{
    const Zu::LgQueue& queue = Zu::LgLog::getQueue();
    const std::uint64_t before = queue.getLostCount();
    state(_id, _number++);
    ++_account._attempted;
    if (queue.getLostCount() == before) ++_account._accepted;
}

void Producer::log(unsigned count)
{
    for (unsigned i = 0; i < count; ++i) log();
}

void Producer::logInBursts(unsigned count, unsigned burst)
{
    for (unsigned done = 0; done < count; done += burst)
    {
        log(std::min(burst, count - done));
        awaitReader();
    }
}

void Producer::awaitReader()
{
    const Zu::LgQueue& queue = Zu::LgLog::getQueue();
    while (!queue.isEmpty()) std::this_thread::yield();
}

} // namespace stress
