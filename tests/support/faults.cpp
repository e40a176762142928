#include "support/faults.h"

#include <array>
#include <cstddef>
#include <utility>

namespace support
{

namespace
{

struct State
{
    int _error = 0;
    int _times = 0;
    int _after = 0;
    int _failures = 0;
};

constexpr auto CALLS = static_cast<std::size_t>(Call::COUNT);

std::array<State, CALLS> states;
std::array<std::function<void()>, CALLS> actsBefore;

State& stateOf(Call call)
{
    return states[static_cast<std::size_t>(call)];
}

std::function<void()>& actBefore(Call call)
{
    return actsBefore[static_cast<std::size_t>(call)];
}

} // namespace

Fault::Fault(Call call, int error, int times, int after) : _call(call)
{
    stateOf(call) = {error, times, after, 0};
}

Fault::~Fault()
{
    stateOf(_call) = {};
}

int Fault::failures() const
{
    return stateOf(_call)._failures;
}

Before::Before(Call call, std::function<void()> act) : _call(call)
{
    actBefore(call) = std::move(act);
}

Before::~Before()
{
    actBefore(_call) = nullptr;
}

bool isToFail(Call call, int& error)
{
    if (actBefore(call)) actBefore(call)();
    State& state = stateOf(call);
    if (state._times == 0) return false;
    if (state._after > 0)
    {
        --state._after;
        return false;
    }
    --state._times;
    ++state._failures;
    error = state._error;
    return true;
}

} // namespace support
