#include "leftState.h"

#include <algorithm>
#include <cstring>

namespace handOver
{

namespace
{

namespace LgMap = Zu::LgMap;

constexpr std::size_t REST = 2;

// By Sebastiano Vigna, "splitmix64".
std::uint64_t mix(std::uint64_t value)
{
    value += 0x9E3779B97F4A7C15;
    value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9;
    value = (value ^ (value >> 27)) * 0x94D049BB133111EB;
    return value ^ (value >> 31);
}

std::uint64_t hashOf(std::size_t at, std::uint8_t value)
{
    return mix(at << 8 | value);
}

std::size_t regionOf(std::size_t at)
{
    if (at < LgMap::BATCHES_AT || at >= LgMap::QUEUES_AT) return REST;
    return (at - LgMap::BATCHES_AT) / LgMap::BATCH_SPACE;
}

} // namespace

LeftState::LeftState(const char* map) : _map(map, map + SIZE) {}

void LeftState::set(std::size_t at, char value)
{
    std::uint64_t& sum = _sums[regionOf(at)];
    sum -= hashOf(at, static_cast<std::uint8_t>(_map[at]));
    sum += hashOf(at, static_cast<std::uint8_t>(value));
    _map[at] = value;
}

void LeftState::write(std::size_t at, const char* bytes, std::size_t size)
{
    constexpr std::size_t PIECE = 64;
    for (std::size_t i = 0; i < size; i += PIECE)
    {
        const std::size_t end = std::min(size, i + PIECE);
        if (std::memcmp(_map.data() + at + i, bytes + i, end - i) == 0) continue;
        for (std::size_t j = i; j < end; ++j)
        {
            if (_map[at + j] == bytes[j]) continue;
            redo({Change::Byte, static_cast<std::uint8_t>(_map[at + j]),
                  static_cast<std::uint8_t>(bytes[j]), static_cast<std::uint32_t>(at + j), 0});
        }
    }
}

void LeftState::append(char character)
{
    redo({Change::Append, 0, static_cast<std::uint8_t>(character), 0, _logHash});
}

void LeftState::note(std::size_t event, Statement statement)
{
    redo({Change::Note, static_cast<std::uint8_t>(_statements[event]),
          static_cast<std::uint8_t>(statement), static_cast<std::uint32_t>(event), 0});
}

void LeftState::remove()
{
    redo({Change::Remove, _isRemoved, true, 0, 0});
}

void LeftState::redo(const Change& change)
{
    _changes.push_back(change);
    switch (change._kind)
    {
    case Change::Byte:
        set(change._at, static_cast<char>(change._new));
        break;
    case Change::Append:
        _log += static_cast<char>(change._new);
        _logHash = mix(_logHash ^ change._new);
        break;
    case Change::Note:
        _statements[change._at] = static_cast<Statement>(change._new);
        _statementsSum += hashOf(change._at, change._new) - hashOf(change._at, change._old);
        break;
    case Change::Remove:
        _isRemoved = change._new != 0;
        break;
    }
}

void LeftState::undoTo(std::size_t length)
{
    for (; _changes.size() > length; _changes.pop_back())
    {
        const Change& change = _changes.back();
        switch (change._kind)
        {
        case Change::Byte:
            set(change._at, static_cast<char>(change._old));
            break;
        case Change::Append:
            _log.pop_back();
            _logHash = change._hash;
            break;
        case Change::Note:
            _statements[change._at] = static_cast<Statement>(change._old);
            _statementsSum += hashOf(change._at, change._old) - hashOf(change._at, change._new);
            break;
        case Change::Remove:
            _isRemoved = change._old != 0;
            break;
        }
    }
}

bool LeftState::isCounted(std::size_t batch) const
{
    std::uint64_t word = 0;
    std::memcpy(&word, _map.data() + offsetof(LgMap::Header, _state), sizeof word);
    const std::uint64_t state = word & ((1U << LgMap::STATE_BITS) - 1);
    return state != LgMap::Idle && (word >> LgMap::STATE_BITS & 1) == batch;
}

std::uint64_t LeftState::getKey() const
{
    std::uint64_t key = mix(_sums[REST]) ^ mix(_statementsSum + _isRemoved);
    for (std::size_t i = 0; i < REST; ++i)
        if (isCounted(i)) key = mix(key ^ _sums[i]);
    return mix(key ^ _logHash);
}

} // namespace handOver
