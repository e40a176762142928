// What the threads of an execution can see: the stores of each atomic object, and races.

#ifndef ZU_TESTS_MODEL_MEMORY_H
#define ZU_TESTS_MODEL_MEMORY_H

#include "addressTable.h"
#include "clocks.h"
#include "operation.h"

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <vector>

namespace model
{

// What one thread knows.
struct View
{
    int _thread = 0;
    Clock _now;
    // What its relaxed loads have seen, for an acquire fence.
    Clock _unfenced;
    // What its relaxed stores pass on, from its last release fence.
    Clock _fenced;
    // All that had to be executed for this thread to be here, whatever the memory orders.
    Times _cause{};

    Time time() const
    {
        return _now._before[static_cast<std::size_t>(_thread)];
    }

    // A step of the thread's own clock.
    void tick()
    {
        _cause[static_cast<std::size_t>(_thread)] =
            ++_now._before[static_cast<std::size_t>(_thread)];
    }

    // Another thread's knowledge is passed on by a lock, or by the begin or end of a thread.
    void join(const View& other)
    {
        _now.join(other._now);
        _cause.join(other._cause);
    }
};

struct Store
{
    std::uint64_t _value = 0;
    // What a load with acquire gets to know.
    Clock _message;
    Times _cause{};
    // In the order of the execution; 0 for the initial value.
    std::uint64_t _number = 0;
    int _thread = -1;
    Site _site = 0;
    // By a read-modify-write of the store before it.
    bool _isModification = false;
    // When each thread first stored or read it, and did so sequentially consistently.
    Times _first{};
    Times _firstInOrder{};
};

class Memory
{
public:
    // Forgets everything, for a new execution.
    void reset();

    // Plain accesses. They return what is wrong with it, or null.
    const char* read(const View& view, std::uintptr_t address, std::size_t size);
    const char* write(const View& view, std::uintptr_t address, std::size_t size);
    const char* release(const View& view, std::uintptr_t address, std::size_t size);

    // To be called before an atomic access is chosen or made: makes the object from what is there.
    // Returns what is wrong with the access, or null.
    const char* prepare(const View& view, const Operation& operation);

    // The stores that a load or a read-modify-write can read.
    void findSources(const View& view, const Operation& operation, std::vector<Store*>& sources);

    // How many places in the modification order a store can take; place 0 is the end.
    std::size_t countPlaces(const View& view, const Operation& operation);

    // A load, read-modify-write or comparison that reads from the store; returns whether it wrote.
    bool readFrom(View& view, Operation& operation, Store& source);
    void writeTo(View& view, const Operation& operation, std::size_t place);
    void fence(View& view, const Operation& operation);

    // Has the thread see all that was stored, as time does, but not what came before it.
    void catchUp(const View& view);

    // Has the sites noted that order something: where a thread acquired what another one released.
    void noteSites(const View& view, const Operation& operation, const Store& source,
                   std::map<Site, int>& sites) const;

    // How many stores there were.
    std::uint64_t getStoreCount() const
    {
        return _number;
    }

    // How many sequentially consistent operations there were on which the order of this kind of
    // operation depends.
    std::uint64_t countOrdered(Kind kind) const;

private:
    struct Object
    {
        // In modification order.
        std::vector<Store*> _stores;
        void reset()
        {
            _stores.clear();
        }
    };

    // Plain writes are ordered, or else a race was found: the last one stands for all.
    struct Byte
    {
        Times _reads;
        Times _atomicReads;
        Times _atomicWrites;
        Time _writeTime;
        std::uint8_t _writer;
        bool _isReleased;
        // Something was written to it not atomically since the object was made from it.
        bool _isChanged;
    };

    struct Word
    {
        std::array<Byte, 8> _bytes;
        void reset()
        {
            *this = {};
            for (Byte& byte : _bytes) byte._isChanged = true;
        }
    };

    template <class Function>
    const char* forEachByte(std::uintptr_t address, std::size_t size, Function function);

    static bool isVisible(const Store& store, const View& view, bool isInOrder,
                          const Times& fences);
    std::size_t findOldest(const Object& object, const View& view,
                           const Operation& operation) const;
    Store& makeStore();
    Store& makeStore(View& view, const Operation& operation, std::uint64_t value);
    void note(Store& store, const View& view, const Operation& operation);

    AddressTable<Word> _words;
    mutable AddressTable<Object> _objects;
    std::vector<std::unique_ptr<Store>> _pool;
    std::size_t _used = 0;
    std::uint64_t _number = 0;
    // What happened before a fence so far: before any but the light ones, before heavy ones, before
    // light ones.
    Times _full{};
    Times _heavy{};
    Times _light{};
    // The last sequentially consistent access of each thread.
    Times _accesses{};
    std::uint64_t _countSequential = 0;
    std::uint64_t _countHeavy = 0;
    std::uint64_t _countLight = 0;
};

} // namespace model

#endif
