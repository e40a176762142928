#include "workers.h"

#include <utility>

namespace server
{

Workers::Workers(int count, const Zu::LgService& service, Socket bell)
    : _service(service), _bell(bell)
{
    for (int i = 0; i < count; ++i) _threads.emplace_back([this] { work(); });
}

Workers::~Workers()
{
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        _isEnding = true;
    }
    _isAsked.notify_all();
    for (std::thread& thread : _threads) thread.join();
}

void Workers::ask(std::uint64_t client, std::string request)
{
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        _asked.push_back({client, std::move(request)});
    }
    _isAsked.notify_one();
}

std::vector<Workers::Answered> Workers::takeAnswers()
{
    const std::lock_guard<std::mutex> lock(_mutex);
    return std::exchange(_answered, {});
}

void Workers::work()
{
    for (Asked asked; take(asked);)
    {
        Answer answer = answerTo(asked._request, _service);
        {
            const std::lock_guard<std::mutex> lock(_mutex);
            _answered.push_back({asked._client, std::move(answer)});
        }
        ring(_bell);
    }
}

// Waits for the next request; false at the end.
bool Workers::take(Asked& asked)
{
    std::unique_lock<std::mutex> lock(_mutex);
    _isAsked.wait(lock, [this] { return _isEnding || !_asked.empty(); });
    if (_asked.empty()) return false;
    asked = std::move(_asked.front());
    _asked.pop_front();
    return true;
}

} // namespace server
