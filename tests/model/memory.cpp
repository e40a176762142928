#include "memory.h"

#include <cstring>

namespace model
{

namespace
{

const char RACE[] = "a data race";
const char USE_AFTER_RELEASE[] = "use of memory that was released";

bool isKnown(const Times& accesses, const Times& before)
{
    for (std::size_t i = 0; i < accesses.size(); ++i)
        if (accesses[i] > before[i]) return false;
    return true;
}

std::uint64_t cut(std::uint64_t value, unsigned size)
{
    return size == sizeof value ? value : value & ((std::uint64_t{1} << (size * 8)) - 1);
}

std::uint64_t valueAt(std::uintptr_t address, unsigned size)
{
    std::uint64_t value = 0;
    std::memcpy(&value, reinterpret_cast<const void*>(address), size);
    return value;
}

} // namespace

void Memory::reset()
{
    _words.clear();
    _objects.clear();
    _used = 0;
    _number = 0;
    _full = _heavy = _light = _accesses = {};
    _countSequential = _countHeavy = _countLight = 0;
}

// Calls the function with each byte until it returns a problem.
template <class Function>
const char* Memory::forEachByte(std::uintptr_t address, std::size_t size, Function function)
{
    constexpr std::uintptr_t UNIT = sizeof(std::uint64_t);
    Word* word = nullptr;
    for (std::uintptr_t place = address; place < address + size; ++place)
    {
        if (!word || place % UNIT == 0) word = &_words[place / UNIT];
        if (const char* const problem = function(word->_bytes[place % UNIT])) return problem;
    }
    return nullptr;
}

const char* Memory::read(const View& view, std::uintptr_t address, std::size_t size)
{
    const Times& before = view._now._before;
    const auto thread = static_cast<std::size_t>(view._thread);
    return forEachByte(address, size,
                       [&](Byte& byte) -> const char*
                       {
                           if (byte._isReleased) return USE_AFTER_RELEASE;
                           byte._reads[thread] = view.time();
                           if (byte._writeTime > before[byte._writer]) return RACE;
                           return isKnown(byte._atomicWrites, before) ? nullptr : RACE;
                       });
}

const char* Memory::write(const View& view, std::uintptr_t address, std::size_t size)
{
    const Times& before = view._now._before;
    return forEachByte(
        address, size,
        [&](Byte& byte) -> const char*
        {
            if (byte._isReleased) return USE_AFTER_RELEASE;
            if (byte._writeTime > before[byte._writer] || !isKnown(byte._reads, before))
                return RACE;
            if (!isKnown(byte._atomicReads, before) || !isKnown(byte._atomicWrites, before))
                return RACE;
            byte._writeTime = view.time();
            byte._writer = static_cast<std::uint8_t>(view._thread);
            byte._isChanged = true;
            return nullptr;
        });
}

const char* Memory::release(const View& view, std::uintptr_t address, std::size_t size)
{
    if (const char* const problem = write(view, address, size)) return problem;
    return forEachByte(address, size,
                       [](Byte& byte)
                       {
                           byte._isReleased = true;
                           return nullptr;
                       });
}

const char* Memory::prepare(const View& view, const Operation& operation)
{
    const auto thread = static_cast<std::size_t>(view._thread);
    const Times& before = view._now._before;
    bool isChanged = false;
    const char* const problem =
        forEachByte(operation._address, operation._size,
                    [&](Byte& byte) -> const char*
                    {
                        if (byte._isReleased) return USE_AFTER_RELEASE;
                        if (byte._writeTime > before[byte._writer]) return RACE;
                        if (mayWrite(operation._kind) && !isKnown(byte._reads, before)) return RACE;
                        isChanged = isChanged || byte._isChanged;
                        byte._isChanged = false;
                        if (mayRead(operation._kind)) byte._atomicReads[thread] = view.time();
                        if (mayWrite(operation._kind)) byte._atomicWrites[thread] = view.time();
                        return nullptr;
                    });
    if (problem) return problem;
    Object& object = _objects[operation._address];
    if (!isChanged && !object._stores.empty()) return nullptr;
    // The initial value, which all threads know that may read it at all.
    Store& initial = makeStore();
    initial._value = valueAt(operation._address, operation._size);
    initial._first[0] = 0;
    object._stores.assign(1, &initial);
    return nullptr;
}

Store& Memory::makeStore()
{
    if (_used == _pool.size()) _pool.push_back(std::make_unique<Store>());
    Store& store = *_pool[_used++];
    store = Store();
    store._first.fill(NEVER);
    store._firstInOrder.fill(NEVER);
    return store;
}

// Whether an access by this thread comes after the store in modification order, or reads it: it
// knows an operation that stored or read it.
bool Memory::isVisible(const Store& store, const View& view, bool isInOrder, const Times& fences)
{
    const Clock& now = view._now;
    for (std::size_t i = 0; i < MAX_THREADS; ++i)
    {
        const Time first = store._first[i];
        const Time firstInOrder = store._firstInOrder[i];
        if (first <= now._before[i] || first <= now._beforeFence[i]) return true;
        if (firstInOrder <= now._inOrder[i]) return true;
        if (isInOrder && (firstInOrder != NEVER || first <= fences[i])) return true;
    }
    return false;
}

std::size_t Memory::findOldest(const Object& object, const View& view,
                               const Operation& operation) const
{
    std::size_t i = object._stores.size() - 1;
    while (i > 0 && !isVisible(*object._stores[i], view, isSequential(operation), _full)) --i;
    return i;
}

void Memory::findSources(const View& view, const Operation& operation, std::vector<Store*>& sources)
{
    sources.clear();
    const std::vector<Store*>& stores = _objects[operation._address]._stores;
    const std::size_t oldest = findOldest(_objects[operation._address], view, operation);
    for (std::size_t i = stores.size(); i-- > oldest;)
    {
        const bool isTaken = i + 1 < stores.size() && stores[i + 1]->_isModification;
        const bool writes =
            operation._kind == Kind::Modify ||
            (operation._kind == Kind::CompareExchange && stores[i]->_value == operation._expected);
        if (!isTaken || !writes) sources.push_back(stores[i]);
    }
}

// Between a store and its modification there is no place.
std::size_t Memory::countPlaces(const View& view, const Operation& operation)
{
    const std::vector<Store*>& stores = _objects[operation._address]._stores;
    const std::size_t oldest = findOldest(_objects[operation._address], view, operation);
    std::size_t count = 1;
    for (std::size_t i = stores.size() - 1; i > oldest; --i)
        if (!stores[i]->_isModification) ++count;
    return count;
}

void Memory::note(Store& store, const View& view, const Operation& operation)
{
    const auto thread = static_cast<std::size_t>(view._thread);
    store._first[thread] = std::min(store._first[thread], view.time());
    if (!isSequential(operation)) return;
    store._firstInOrder[thread] = std::min(store._firstInOrder[thread], view.time());
    _accesses[thread] = view.time();
    ++_countSequential;
}

bool Memory::readFrom(View& view, Operation& operation, Store& source)
{
    operation._value = source._value;
    const bool fails =
        operation._kind == Kind::CompareExchange && source._value != operation._expected;
    const bool writes = operation._kind != Kind::Load && !fails;
    const Order order = fails ? operation._failureOrder : operation._order;
    view._cause.join(source._cause);
    (isAcquire(order) ? view._now : view._unfenced).join(source._message);
    note(source, view, operation);
    if (!writes) return false;
    const std::uint64_t value = operation._kind == Kind::CompareExchange
                                    ? operation._operand
                                    : changed(operation._change, source._value, operation._operand);
    Store& store = makeStore(view, operation, value);
    store._isModification = true;
    // The release sequence goes on.
    store._message.join(source._message);
    std::vector<Store*>& stores = _objects[operation._address]._stores;
    stores.insert(std::find(stores.begin(), stores.end(), &source) + 1, &store);
    std::memcpy(reinterpret_cast<void*>(operation._address), &stores.back()->_value,
                operation._size);
    return true;
}

void Memory::noteSites(const View& view, const Operation& operation, const Store& source,
                       std::map<Site, int>& sites) const
{
    if (!isAcquire(operation._order)) return;
    const std::vector<Store*>& stores = _objects[operation._address]._stores;
    auto place = std::find(stores.begin(), stores.end(), &source);
    // The release sequence backwards.
    for (;; --place)
    {
        const Store& store = **place;
        if (store._thread != view._thread && store._site != 0)
        {
            sites[store._site] |= WithoutRelease;
            sites[operation._site] |= WithoutAcquire;
        }
        if (!store._isModification) return;
    }
}

void Memory::catchUp(const View& view)
{
    const auto thread = static_cast<std::size_t>(view._thread);
    _objects.forEach(
        [&](Object& object)
        {
            if (object._stores.empty()) return;
            Store& last = *object._stores.back();
            last._first[thread] = std::min(last._first[thread], view.time());
        });
}

void Memory::writeTo(View& view, const Operation& operation, std::size_t place)
{
    std::vector<Store*>& stores = _objects[operation._address]._stores;
    std::size_t i = stores.size();
    for (; place > 0; --place)
        while (stores[--i]->_isModification) continue;
    Store& store = makeStore(view, operation, operation._operand);
    stores.insert(stores.begin() + static_cast<std::ptrdiff_t>(i), &store);
    std::memcpy(reinterpret_cast<void*>(operation._address), &stores.back()->_value,
                operation._size);
}

Store& Memory::makeStore(View& view, const Operation& operation, std::uint64_t value)
{
    Store& store = makeStore();
    store._value = cut(value, operation._size);
    store._message = isRelease(operation._order) ? view._now : view._fenced;
    store._cause = view._cause;
    store._number = ++_number;
    store._thread = view._thread;
    store._site = isRelease(operation._order) ? operation._site : 0;
    note(store, view, operation);
    return store;
}

void Memory::fence(View& view, const Operation& operation)
{
    Clock& now = view._now;
    if (operation._kind == Kind::LightFence)
    {
        ++_countLight;
        now._beforeFence.join(_heavy);
        _light.join(now._before);
        return;
    }
    if (isAcquire(operation._order)) now.join(view._unfenced);
    if (operation._order == Sequential)
    {
        const bool isHeavy = operation._kind == Kind::HeavyFence;
        now._beforeFence.join(_full);
        now._inOrder.join(_accesses);
        _full.join(now._before);
        ++(isHeavy ? _countHeavy : _countSequential);
        if (isHeavy)
        {
            now._beforeFence.join(_light);
            _heavy.join(now._before);
        }
    }
    if (isRelease(operation._order)) view._fenced = now;
}

std::uint64_t Memory::countOrdered(Kind kind) const
{
    if (kind == Kind::LightFence) return _countHeavy;
    if (kind == Kind::HeavyFence) return _countHeavy + _countSequential + _countLight;
    return _countHeavy + _countSequential;
}

} // namespace model
