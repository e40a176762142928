// What the next service makes of what a process has left, wherever in an execution that was killed.
//
// How it works. The explorer runs an execution to its end. Everything that its threads have written
// to the map and to the log file, and which statements have returned, is noted as effects, each
// with what had to be done before. A kill stops each thread anywhere. So what is left is any set of
// effects that contains, with each of them, those that had to be there before. All such sets are
// produced, which needs no execution of its own for each: the explorer's reduction leaves out
// interleavings, but no execution of which a set would be missing. What is left is given to
// LgServiceRecovery, unless the same was before. The log has to have each event whose statement
// returned exactly once, in the order of its thread, and the losses counted.
//
// The recovery is killed as well, behind each of its writes and each byte of the log, and what it
// leaves is recovered in the same way.

#ifndef ZU_TESTS_MODEL_HANDOVER_H
#define ZU_TESTS_MODEL_HANDOVER_H

#include "leftState.h"
#include "modelChecker.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_set>
#include <vector>

namespace handOver
{

struct Settings
{
    // How often in a row the recovery is killed, too.
    int _killsOfRecovery = 1;
    // Whether it is killed behind each byte of the log, not only at the ends and beginnings of
    // lines.
    bool _isEachByte = false;
};

class HandOver : public model::Watcher
{
public:
    explicit HandOver(const Settings& settings);

    void begin() override;
    void written(const Point& point, const void* place, std::size_t size) override;
    void noted(const Point& point, std::uint64_t what) override;
    std::string end() override;

    // How many moments of executions there were, how many different states, and how many
    // recoveries.
    std::uint64_t getMoments() const
    {
        return _moments;
    }

    std::uint64_t getStates() const
    {
        return _states;
    }

    std::uint64_t getRecoveries() const
    {
        return _recoveries;
    }

private:
    static constexpr std::size_t THREADS = model::MAX_THREADS;

    struct Effect
    {
        // Of bytes, or of a note if there are none.
        std::uint32_t _size;
        std::uint32_t _at;
        std::size_t _bytes;
        std::uint64_t _what;
        std::uint32_t _time;
        std::array<std::uint32_t, THREADS> _cause;
        // How many effects of each thread have to be there before.
        std::array<std::uint32_t, THREADS> _needed;
    };

    void add(const Point& point, Effect effect);
    void addBytes(const Point& point, std::size_t at, const char* bytes, std::size_t size);
    void findNeeded();
    bool isNext(std::size_t thread) const;
    void apply(const Effect& effect);
    std::string visit();
    std::string visitNext(std::size_t thread);
    bool isNew(int kills);
    std::string check(int kills);
    std::string recover();
    std::string checkKills(int kills, std::size_t before);
    bool isStepTaken(const std::vector<LeftState::Change>& changes, std::size_t step) const;
    std::string findProblem() const;
    std::string findProblemOfLosses(std::uint64_t lost,
                                    const std::array<int, LeftState::EVENTS>& counts) const;
    std::string describe(const std::string& problem) const;
    bool isAllNoted() const;

    const Settings _settings;
    LeftState _state;
    // The map as it was written last.
    std::vector<char> _last;
    std::array<std::vector<Effect>, THREADS> _effects;
    std::vector<char> _bytes;
    // How many effects of each thread are there.
    std::array<std::uint32_t, THREADS> _present{};
    std::array<std::size_t, THREADS> _strides{};
    std::vector<bool> _seenMoments;
    // Those that were checked with at least so many kills of the recovery.
    std::vector<std::unordered_set<std::uint64_t>> _seen;
    std::uint64_t _moments = 0;
    std::uint64_t _states = 0;
    std::uint64_t _recoveries = 0;
};

} // namespace handOver

#endif
