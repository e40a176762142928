// Scenarios of a thread's queue and its reader, with small rings.

#ifndef ZU_TESTS_MODEL_QUEUESCENARIOS_H
#define ZU_TESTS_MODEL_QUEUESCENARIOS_H

#include "base/hwCounter.h"
#include "base/lgQueue.h"
#include "base/lgStream.h"
#include "base/osCpuInfo.h"
#include "modelChecker.h"
#include "scenario.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace queueScenarios
{

using Zu::LgQueue;
using Zu::LgStream;
namespace LgTypes = Zu::LgTypes;

// Makes what the library makes on first use.
inline void prepareLibrary()
{
    Zu::OsCpuInfo::initialize();
    Zu::HwCounter::init();
    Zu::HwCounter::timeStamp();
}

class SmallQueue : public LgQueue
{
public:
    SmallQueue(std::uint32_t entries, std::uint32_t characters) : LgQueue(7, entries, characters) {}
};

class SmallStream : public LgStream
{
public:
    explicit SmallStream(std::uint32_t size) : LgStream(size) {}
};

// The pieces that an event's text is inserted in.
using Pieces = std::vector<const char*>;

struct Event
{
    Pieces _pieces;
    bool _isCancelled = false;
};

struct Case
{
    const char* _name;
    std::uint32_t _entries;
    std::uint32_t _characters;
    std::vector<Event> _events;
    // How often the reader looks while the producer runs; it takes the rest afterwards.
    int _looks;
};

// Whether a text is that of an event: each piece whole, or a mark in its place, or dropped.
inline bool isTextOf(std::string_view text, const Pieces& pieces, std::size_t from = 0)
{
    if (from == pieces.size()) return text.empty();
    const std::string_view piece = pieces[from];
    if (isTextOf(text, pieces, from + 1)) return true;
    if (text.starts_with(piece) && isTextOf(text.substr(piece.size()), pieces, from + 1))
        return true;
    return text.starts_with('#') && isTextOf(text.substr(1), pieces, from + 1);
}

inline bool isWhole(std::string_view text, const Pieces& pieces)
{
    std::string whole;
    for (const char* const piece : pieces) whole += piece;
    return text == whole;
}

// A producer's side of the account.
class Producer
{
public:
    explicit Producer(LgQueue& queue) : _queue(queue) {}

    void log(const Event& event)
    {
        if (!_queue.reserveEntry(LgTypes::Warning))
        {
            ++_lost;
            return;
        }
        _queue.beginInsertion();
        for (const char* const piece : event._pieces) _queue.getStream() << piece;
        if (event._isCancelled) return _queue.cancelInsertion();
        _queue.endInsertion();
        _published.push_back(&event);
    }

    const std::vector<const Event*>& published() const
    {
        return _published;
    }

    std::uint64_t lost() const
    {
        return _lost;
    }

private:
    LgQueue& _queue;
    std::vector<const Event*> _published;
    std::uint64_t _lost = 0;
};

// What a reader has taken out of a queue.
class Taken
{
public:
    const std::vector<std::string>& texts() const
    {
        return _texts;
    }

    // As many losses as the entries of lost events have counted.
    std::uint64_t overflows() const
    {
        return _overflows;
    }

protected:
    std::vector<std::string> _texts;
    std::uint64_t _overflows = 0;
};

// A reader that takes each event at once.
class TakingReader : public Taken
{
public:
    explicit TakingReader(LgQueue& queue) : _queue(queue) {}

    // Takes the oldest event, if there is one.
    bool look()
    {
        if (_queue.isEmpty()) return false;
        const LgQueue::Entry& entry = _queue.readEntry();
        if (entry.isOverflowEntry())
        {
            _overflows += static_cast<std::uint64_t>(entry.getOverflowCount());
            _queue.removeEntry();
            return true;
        }
        model::require(entry.getLevel() == LgTypes::Warning, "the level is the event's");
        char text[64];
        unsigned int length = 0;
        model::require(_queue.getStream().take(text, sizeof text, length), "the text fits");
        _texts.emplace_back(text, length);
        _queue.removeEntry();
        return true;
    }

private:
    LgQueue& _queue;
};

// A reader that looks ahead at all that is there, and removes it later.
class BatchReader : public Taken
{
public:
    explicit BatchReader(LgQueue& queue) : _queue(queue) {}

    bool look()
    {
        LgQueue::ReadPosition position = _queue.getReadPosition();
        if (!_queue.isWaiting(position)) return false;
        for (int i = 0; i < BATCH && _queue.isWaiting(position); ++i)
        {
            const LgQueue::Entry& entry = _queue.getEntryAt(position);
            if (entry.isOverflowEntry())
                _overflows += static_cast<std::uint64_t>(entry.getOverflowCount());
            else
                _texts.emplace_back(_queue.getTextAt(position, _scratch));
            _queue.stepEntry(position);
        }
        _queue.removeUpTo(position);
        return true;
    }

private:
    static constexpr int BATCH = 2;
    LgQueue& _queue;
    char _scratch[64];
};

template <class Reader>
void checkAccount(const LgQueue& queue, const Producer& producer, const Reader& reader)
{
    const std::vector<const Event*>& published = producer.published();
    const std::vector<std::string>& texts = reader.texts();
    model::require(texts.size() == published.size(), "each published event arrives once");
    std::string fates;
    for (std::size_t i = 0; i < texts.size(); ++i)
    {
        const Pieces& pieces = published[i]->_pieces;
        model::require(isTextOf(texts[i], pieces), "events arrive in order, with their texts");
        fates += isWhole(texts[i], pieces) ? 'w' : 'c';
    }
    model::require(queue.getLostCount() == producer.lost(), "losses are counted exactly");
    model::require(reader.overflows() <= producer.lost(), "no loss is counted twice");
    model::outcome(fates + std::string(producer.lost(), 'l'));
}

// The first thread is the reader.
template <class Reader> std::function<void()> passing(const Case& c)
{
    return [&c]
    {
        SmallQueue queue(c._entries, c._characters);
        Producer producer(queue);
        Reader reader(queue);
        model::thread(
            [&]
            {
                for (const Event& event : c._events) producer.log(event);
            });
        for (int i = 0; i < c._looks; ++i) reader.look();
        model::join();
        while (reader.look()) continue;
        checkAccount(queue, producer, reader);
    };
}

// The producer's thread ends, and the reader ends the queue when it has seen that.
template <class Reader> std::function<void()> ending(const Case& c, bool asksAgain = true)
{
    return [&c, asksAgain]
    {
        auto queue = std::make_unique<SmallQueue>(c._entries, c._characters);
        Producer producer(*queue);
        Reader reader(*queue);
        model::thread(
            [&]
            {
                for (const Event& event : c._events) producer.log(event);
                queue->creatorExit();
            });
        bool isEnded = false;
        const auto lookOrEnd = [&]
        {
            if (reader.look()) return;
            // The last event may have come between the first look and the end of the thread.
            if (queue->isCreatorAlive() || (asksAgain && !queue->isEmpty())) return;
            checkAccount(*queue, producer, reader);
            queue.reset();
            isEnded = true;
        };
        for (int i = 0; i < c._looks && !isEnded; ++i) lookOrEnd();
        model::join();
        while (!isEnded) lookOrEnd();
    };
}

// Strings in a text ring alone. Those that find no room are cut or dropped.
struct StreamCase
{
    const char* _name;
    std::uint32_t _characters;
    std::vector<Pieces> _strings;
    int _looks;
    // Whether there is room for all.
    bool _fits;
};

inline std::function<void()> streaming(const StreamCase& c)
{
    return [&c]
    {
        SmallStream stream(c._characters);
        model::thread(
            [&]
            {
                for (const Pieces& pieces : c._strings)
                {
                    for (const char* const piece : pieces) stream << piece;
                    stream << Zu::ends;
                }
            });
        std::size_t next = 0;
        const auto look = [&]
        {
            const unsigned int size = stream.getNextSize();
            char text[64];
            model::require(stream.take(text) == size || size == 0, "the size stays");
            const std::string_view taken = text;
            if (taken.empty()) return size != 0;
            if (c._fits) model::require(next < c._strings.size(), "no string comes twice");
            if (c._fits)
            {
                model::require(isWhole(taken, c._strings[next++]), "whole, in order");
                return true;
            }
            while (next < c._strings.size() && !isTextOf(taken, c._strings[next])) ++next;
            model::require(next++ < c._strings.size(), "a string, in its order");
            return true;
        };
        for (int i = 0; i < c._looks; ++i) look();
        model::join();
        while (look()) continue;
        model::require(!c._fits || next == c._strings.size(), "no string is lost");
    };
}

inline const Event A{{"a"}};
inline const Event B{{"bc"}};
inline const Event LONG{{"defghi"}};
inline const Event PIECES{{"de", "fgh"}};
inline const Event CANCELLED{{"x"}, true};

inline const Case CASES[] = {
    {"4 entries, 8 characters", 4, 8, {A, B, A}, 2},
    {"4 entries, lost events", 4, 64, {A, B, A, B}, 2},
    {"4 entries, many lost events", 4, 64, {A, B, A, B, A, B}, 1},
    {"8 entries, 4 characters", 8, 4, {A, B, A}, 2},
    {"8 entries, 8 characters", 8, 8, {B, A, B, A}, 2},
    {"8 characters, cut texts", 4, 8, {A, LONG, B}, 2},
    {"8 characters, texts in pieces", 4, 8, {B, PIECES, A}, 2},
    {"4 entries, all used again", 4, 64, {A, A, A, A, B}, 3},
    {"cancelled events", 4, 8, {A, CANCELLED, B, CANCELLED, A}, 2},
};

// For the long run.
inline const Case LONG_CASES[] = {
    {"8 entries, many events", 8, 64, {A, B, A, B, A, B, A}, 3},
    {"4 entries, all kinds of events", 4, 16, {A, CANCELLED, PIECES, LONG, B}, 3},
};

inline const StreamCase LONG_STREAMS[] = {
    {"text alone, 4 characters, more", 4, {{"a"}, {"bc"}, {"d"}, {"efgh"}}, 4, false},
    {"text alone, 8 characters, more", 8, {{"a"}, {"bcde"}, {"fgh", "i"}, {"jk"}}, 3, false},
};

inline const Case ENDS[] = {
    {"end of a thread", 4, 8, {A, B}, 3},
    {"end of a thread, lost events", 4, 64, {A, B, A}, 3},
};

inline const StreamCase STREAMS[] = {
    {"text alone, 8 characters", 8, {{"a"}, {"b"}, {"c"}}, 2, true},
    {"text alone, 16 characters", 16, {{"ab"}, {"c", "d"}, {"e"}, {"f"}}, 3, true},
    {"text alone, 4 characters, cut", 4, {{"a"}, {"bc"}, {"d"}}, 2, false},
    {"text alone, 8 characters, cut", 8, {{"a"}, {"bcde"}, {"fgh", "i"}}, 3, false},
};

template <class Cases> void addPassing(const Cases& cases, std::vector<Scenario>& scenarios)
{
    for (const Case& c : cases)
    {
        scenarios.push_back({c._name, passing<TakingReader>(c)});
        scenarios.push_back({std::string(c._name) + ", in batches", passing<BatchReader>(c)});
    }
}

inline std::vector<Scenario> all()
{
    std::vector<Scenario> scenarios;
    addPassing(CASES, scenarios);
    for (const Case& c : ENDS)
    {
        scenarios.push_back({c._name, ending<TakingReader>(c)});
        scenarios.push_back({std::string(c._name) + ", in batches", ending<BatchReader>(c)});
    }
    for (const StreamCase& c : STREAMS) scenarios.push_back({c._name, streaming(c)});
    return scenarios;
}

inline std::vector<Scenario> forLongRun()
{
    std::vector<Scenario> scenarios;
    addPassing(LONG_CASES, scenarios);
    for (const StreamCase& c : LONG_STREAMS) scenarios.push_back({c._name, streaming(c)});
    return scenarios;
}

} // namespace queueScenarios

#endif
