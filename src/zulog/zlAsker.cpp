#include "zulog/zlAsker.h"

#include "app/lgMapFile.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <thread>

namespace Zu
{

namespace
{

using Outcome = LgControlPeer::Outcome;

constexpr std::chrono::milliseconds PAUSE{5};

ZlAsker::State stateOf(Outcome outcome)
{
    if (outcome == Outcome::Opened) return ZlAsker::State::Ready;
    if (outcome == Outcome::Left) return ZlAsker::State::Left;
    return outcome == Outcome::Gone ? ZlAsker::State::Gone : ZlAsker::State::Refused;
}

} // namespace

ZlAsker::ZlAsker(const std::string& path) : _state(stateOf(_peer.open(path)))
{
    if (_state == State::Refused)
        refuse("it can't be opened as a plain file that only this user can change");
    if (_state == State::Ready) readHeader();
}

bool ZlAsker::refuse(const char* reason)
{
    _state = State::Refused;
    _reason = reason;
    return false;
}

bool ZlAsker::readHeader()
{
    if (!_peer.read(0, &_header, sizeof _header) ||
        std::memcmp(_header._magic, LgControl::MAGIC, sizeof LgControl::MAGIC) != 0)
        return refuse("it is not a control file");
    if (_header._version != LgControl::VERSION)
        return refuse("it is of another version than this program");
    _header._program[LgControl::TEXT_SIZE - 1] = '\0';
    _header._directory[LgControl::TEXT_SIZE - 1] = '\0';
    return true;
}

std::string ZlAsker::getProgram() const
{
    return _header._program;
}

// Who asks is done within its own patience.
bool ZlAsker::claim(Time end)
{
    while (!_peer.claim())
    {
        if (std::chrono::steady_clock::now() >= end) return false;
        std::this_thread::sleep_for(PAUSE);
    }
    return true;
}

bool ZlAsker::write(const std::string& request)
{
    if (request.size() > LgControl::MOST_REQUEST) return false;
    const std::uint64_t number = _header._requestNumber + 1;
    const LgControl::Text text = {static_cast<std::uint32_t>(request.size()), 0,
                                  LgControl::hashOf(request.data(), request.size(), number)};
    _header._requestNumber = number;
    return _peer.write(LgControl::REQUEST_AT, request.data(), request.size()) &&
           _peer.write(offsetof(LgControl::Header, _request), &text, sizeof text) &&
           _peer.write(offsetof(LgControl::Header, _requestNumber), &number, sizeof number);
}

// False while there is none.
bool ZlAsker::read(std::string& answer)
{
    const std::uint64_t number = _header._requestNumber;
    std::uint64_t answered = 0;
    LgControl::Text text;
    if (!_peer.read(offsetof(LgControl::Header, _answerNumber), &answered, sizeof answered) ||
        answered != number || !_peer.read(offsetof(LgControl::Header, _answer), &text, sizeof text))
        return false;
    answer.resize(std::min(text._length, LgControl::MOST_ANSWER));
    return _peer.read(LgControl::ANSWER_AT, answer.data(), answer.size()) &&
           LgControl::hashOf(answer.data(), answer.size(), number) == text._hash;
}

bool ZlAsker::ask(const std::string& request, std::chrono::milliseconds patience,
                  std::string& answer)
{
    const Time end = std::chrono::steady_clock::now() + patience;
    if (!claim(end))
    {
        _reason = "another process is asking it";
        return false;
    }
    const bool hasAnswer = askClaimed(request, end, answer);
    _peer.release();
    return hasAnswer;
}

bool ZlAsker::askClaimed(const std::string& request, Time end, std::string& answer)
{
    // The last number of another asker counts.
    if (!readHeader() || !write(request))
    {
        _reason = "its control file can't be written";
        return false;
    }
    while (!read(answer))
    {
        const bool isAlive = _peer.isAlive();
        _reason = isAlive ? "it does not answer" : "it has ended";
        if (!isAlive || std::chrono::steady_clock::now() >= end) return false;
        std::this_thread::sleep_for(PAUSE);
    }
    return true;
}

std::vector<std::string> zlFindControlFiles(const std::string& directory)
{
    std::vector<std::string> names = lgNamesIn(directory, LgControlPeer::prefix());
    // Behind the user, a name has the time, which has the same number of digits in all.
    std::sort(names.begin(), names.end());
    for (std::string& name : names) name.insert(0, directory);
    return names;
}

} // namespace Zu
