// A hash table of addresses that is emptied at no cost, for what is made anew in each execution.

#ifndef ZU_TESTS_MODEL_ADDRESSTABLE_H
#define ZU_TESTS_MODEL_ADDRESSTABLE_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace model
{

// The values don't move. `Value` has reset().
template <class Value> class AddressTable
{
public:
    AddressTable() : _slots(std::size_t{1} << BITS) {}

    void clear()
    {
        ++_generation;
        _used = 0;
    }

    // The value of this address, or null.
    Value* find(std::uintptr_t address)
    {
        Slot& slot = slotOf(address);
        return slot._generation == _generation ? slot._value : nullptr;
    }

    // The same; there is a new one if there was none.
    Value& operator[](std::uintptr_t address)
    {
        Slot* slot = &slotOf(address);
        if (slot->_generation == _generation) return *slot->_value;
        if (_used * 2 >= _slots.size())
        {
            enlarge();
            slot = &slotOf(address);
        }
        if (_used == _values.size()) _values.push_back(std::make_unique<Value>());
        Value& value = *_values[_used++];
        value.reset();
        *slot = {address, _generation, &value};
        return value;
    }

    template <class Function> void forEach(Function function)
    {
        for (std::size_t i = 0; i < _used; ++i) function(*_values[i]);
    }

private:
    static constexpr int BITS = 10;

    struct Slot
    {
        std::uintptr_t _address = 0;
        std::uint64_t _generation = 0;
        Value* _value = nullptr;
    };

    Slot& slotOf(std::uintptr_t address)
    {
        const std::size_t mask = _slots.size() - 1;
        std::size_t i = static_cast<std::size_t>(address * 0x9E3779B97F4A7C15U >> 20) & mask;
        while (_slots[i]._generation == _generation && _slots[i]._address != address)
            i = (i + 1) & mask;
        return _slots[i];
    }

    void enlarge()
    {
        const std::vector<Slot> old(std::move(_slots));
        _slots.assign(old.size() * 2, Slot());
        for (const Slot& slot : old)
            if (slot._generation == _generation) slotOf(slot._address) = slot;
    }

    std::uint64_t _generation = 1;
    std::size_t _used = 0;
    std::vector<Slot> _slots;
    std::vector<std::unique_ptr<Value>> _values;
};

} // namespace model

#endif
