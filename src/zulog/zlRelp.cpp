#include "zulog/zlRelp.h"

#include <algorithm>

namespace Zu
{

namespace
{

constexpr int TAKEN = 200;
constexpr int OPENING = 1;

} // namespace

void ZlRelpAnswers::begin(std::size_t messages)
{
    _areTaken.assign(messages, false);
    _isOpened = false;
    _refusal = 0;
}

void ZlRelpAnswers::take(int transaction, int code)
{
    if (transaction < OPENING) return;
    if (code != TAKEN && _refusal == 0) _refusal = code;
    if (code != TAKEN) return;
    if (transaction == OPENING) _isOpened = true;
    const auto message = static_cast<std::size_t>(transaction - OPENING);
    // The session's end is answered, too.
    if (message > 0 && message <= _areTaken.size()) _areTaken[message - 1] = true;
}

std::size_t ZlRelpAnswers::countTaken() const
{
    const auto end = std::find(_areTaken.begin(), _areTaken.end(), false);
    return static_cast<std::size_t>(end - _areTaken.begin());
}

bool zlIsAnswerForm(std::string_view form)
{
    constexpr std::string_view ANSWER = "in rsp command handler, txnr %d, code %d,";
    return form.substr(0, ANSWER.size()) == ANSWER;
}

} // namespace Zu
