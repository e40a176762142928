#include "clients.h"

#include <array>
#include <chrono>
#include <vector>

namespace server
{

namespace
{

constexpr std::size_t MOST_CLIENTS = 100;
// How much of the rest is read of a client that was refused, so that it gets the answer.
constexpr std::size_t MOST_DROPPED = std::size_t{1} << 20;
constexpr int FOREVER = -1;
// How long the end waits for clients that don't read.
constexpr std::chrono::seconds PATIENCE(1);

} // namespace

Watched Client::watched() const
{
    Watched watched;
    watched._socket = _socket;
    watched._writes = !_output.empty();
    watched._reads = !isBusy() && !_isEnded;
    return watched;
}

void Client::receive()
{
    std::array<char, LONGEST_LINE> bytes;
    const int count = server::receive(_socket, bytes.data(), bytes.size());
    if (count == LATER) return;
    if (count == BROKEN) _isOver = true;
    if (count == CLOSED) _isEnded = true;
    if (_isEnded && _isSilent) _isOver = true;
    if (count <= 0) return;
    const auto size = static_cast<std::size_t>(count);
    if (!_isSilent)
        _input.append(bytes.data(), size);
    else if ((_dropped += size) > MOST_DROPPED)
        _isOver = true;
}

void Client::send()
{
    const int count = server::send(_socket, _output.data(), _output.size());
    if (count == BROKEN) _isOver = true;
    if (count > 0) _output.erase(0, static_cast<std::size_t>(count));
    endAfterLast();
}

bool Client::takeRequest(std::string& request)
{
    if (isBusy() || _isLast || _isOver) return false;
    const std::size_t end = _input.find('\n');
    if (end > LONGEST_LINE && _input.size() > LONGEST_LINE)
    {
        refuse("? a line has at most 4096 bytes");
        return false;
    }
    // What a client sends behind its last line feed is no request.
    if (end == std::string::npos)
    {
        if (_isEnded) _isOver = true;
        return false;
    }
    request = _input.substr(0, end);
    _input.erase(0, end + 1);
    if (request.ends_with('\r')) request.pop_back();
    _isAsked = true;
    return true;
}

void Client::answer(const std::string& text, bool isLast)
{
    _isAsked = false;
    _isLast = isLast;
    _output += text + "\n";
    send();
}

void Client::refuse(const char* reason)
{
    ZU_LOG_WARNING(Requests, "closed: too long: " << _input.substr(0, 60).c_str());
    _input.clear();
    answer(reason, true);
}

// A socket that is closed while input waits would take back what was sent. So the client is told
// first that this was all, and closed when it has closed its side.
void Client::endAfterLast()
{
    if (!_isLast || !_output.empty()) return;
    if (!_isSilent) endSending(_socket);
    _isSilent = true;
    if (_isEnded) _isOver = true;
}

void Clients::serve(const std::atomic<bool>& isAskedToEnd)
{
    while (!_isEnding && !isAskedToEnd) step(FOREVER);
    _isEnding = true;
    const auto end = std::chrono::steady_clock::now() + PATIENCE;
    while (isBusy() && std::chrono::steady_clock::now() < end) step(10);
}

// One round: wait, then whatever is possible for each without waiting.
void Clients::step(int milliseconds)
{
    std::vector<Watched> sockets(2);
    sockets[0]._socket = _bell;
    sockets[0]._reads = true;
    sockets[1]._socket = _listener;
    sockets[1]._reads = _clients.size() < MOST_CLIENTS && !_isEnding;
    std::vector<std::uint64_t> ids(2);
    for (const auto& [id, client] : _clients)
    {
        const Watched watched = client.watched();
        if (!watched._reads && !watched._writes) continue;
        sockets.push_back(watched);
        ids.push_back(id);
    }
    wait(sockets, milliseconds);
    for (std::size_t i = 2; i < sockets.size(); ++i)
    {
        Client& client = _clients.at(ids[i]);
        if (sockets[i]._reads && sockets[i]._canRead) client.receive();
        if (sockets[i]._writes && sockets[i]._canWrite) client.send();
    }
    if (sockets[1]._reads && sockets[1]._canRead) accept();
    if (sockets[0]._canRead) silence(_bell);
    deliverAnswers();
    std::string request;
    for (auto& [id, client] : _clients)
        if (!_isEnding && client.takeRequest(request)) _workers.ask(id, request);
    std::erase_if(_clients, [](const auto& entry) { return entry.second.isOver(); });
}

void Clients::accept()
{
    const Socket socket = acceptFrom(_listener);
    if (socket != NO_SOCKET) _clients.try_emplace(++_lastId, socket);
}

// A client may have gone while its request was being answered.
void Clients::deliverAnswers()
{
    for (const Workers::Answered& answered : _workers.takeAnswers())
    {
        const Answer& answer = answered._answer;
        if (answer._shutsDown) _isEnding = true;
        const auto client = _clients.find(answered._client);
        if (client != _clients.end()) client->second.answer(answer._text, answer._closes);
    }
}

bool Clients::isBusy() const
{
    for (const auto& [id, client] : _clients)
        if (client.isBusy()) return true;
    return false;
}

} // namespace server
