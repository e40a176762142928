// One byte each for the index of the object, the index of the counter and the instance's name, and
// a block of performance data.

#include "base/exInternalError.h"
#include "base/prEx.h"
#include "base/prPerfCounter.h"

#include "fuzzTarget.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace
{

using Bytes = std::vector<unsigned char>;

enum class Failure
{
    NO_OBJECT,
    NO_INSTANCE,
    NO_COUNTER,
    UNSUPPORTED,
    WITHOUT_VALUE
};

using Result = std::variant<std::uint64_t, Failure>;

// The beginning and the end of a record in the block.
struct Record
{
    std::size_t _begin;
    std::size_t _end;
};

std::uint64_t numberAt(const Bytes& data, std::size_t place, int size)
{
    std::uint64_t number = 0;
    for (int i = size; i-- > 0;)
        number = number << 8 | data.at(place + static_cast<std::size_t>(i));
    return number;
}

// The record at a place, with its length in one of its fields, if it fits before the end.
std::optional<Record> recordAt(const Bytes& data, std::size_t place, std::size_t end,
                               std::size_t lengthField, std::size_t leastLength)
{
    if (place > end || end - place < leastLength) return std::nullopt;
    const std::uint64_t length = numberAt(data, place + lengthField, 4);
    if (length < leastLength || length > end - place) return std::nullopt;
    return Record{place, place + length};
}

std::optional<Record> findObject(const Bytes& data, std::uint32_t index)
{
    if (data.size() < 88) return std::nullopt;
    const std::uint64_t total = numberAt(data, 20, 4);
    const std::size_t end = total < data.size() ? total : data.size();
    std::size_t place = numberAt(data, 24, 4);
    if (place < 88) return std::nullopt;
    while (const auto record = recordAt(data, place, end, 0, 64))
    {
        if (numberAt(data, record->_begin + 12, 4) == index) return record;
        place = record->_end;
    }
    return std::nullopt;
}

std::int32_t instancesOf(const Bytes& data, const Record& object)
{
    return static_cast<std::int32_t>(numberAt(data, object._begin + 40, 4));
}

std::optional<Record> findCounter(const Bytes& data, const Record& object, std::uint32_t index)
{
    const std::uint64_t length = numberAt(data, object._begin + 4, 4);
    const std::size_t size = object._end - object._begin;
    const std::size_t end = object._begin + (length < size ? length : size);
    std::size_t place = object._begin + numberAt(data, object._begin + 8, 4);
    for (std::uint64_t left = numberAt(data, object._begin + 32, 4); left > 0; --left)
    {
        const auto record = recordAt(data, place, end, 0, 40);
        if (!record) return std::nullopt;
        if (numberAt(data, record->_begin + 4, 4) == index) return record;
        place = record->_end;
    }
    return std::nullopt;
}

// The values of the object itself or of its instance.
std::optional<Record> findValues(const Bytes& data, const Record& object, const std::string& name)
{
    std::size_t place = object._begin + numberAt(data, object._begin + 4, 4);
    const std::int32_t count = instancesOf(data, object);
    if (count < 1) return recordAt(data, place, object._end, 0, 4);
    for (std::int32_t i = 0; i < count; ++i)
    {
        const auto instance = recordAt(data, place, object._end, 0, 24);
        if (!instance) return std::nullopt;
        const auto values = recordAt(data, instance->_end, object._end, 0, 4);
        if (!values) return std::nullopt;
        const std::size_t text = instance->_begin + numberAt(data, instance->_begin + 16, 4);
        bool isFound = text <= instance->_end && instance->_end - text > name.size();
        for (std::size_t k = 0; isFound && k <= name.size(); ++k)
            isFound = data[text + k] == static_cast<unsigned char>(name.c_str()[k]);
        if (isFound) return values;
        place = values->_end;
    }
    return std::nullopt;
}

Result expectedOf(const Bytes& data, const Record& object, std::uint32_t counterIndex,
                  const std::string& name)
{
    const auto values = findValues(data, object, name);
    if (!values && instancesOf(data, object) >= 1) return Failure::NO_INSTANCE;
    const auto counter = findCounter(data, object, counterIndex);
    if (!counter) return Failure::NO_COUNTER;
    const std::uint64_t kind = numberAt(data, counter->_begin + 28, 4) >> 8 & 3;
    if (kind == 3) return Failure::UNSUPPORTED;
    if (kind == 2) return Failure::WITHOUT_VALUE;
    const int size = kind == 0 ? 4 : 8;
    const std::uint64_t offset = numberAt(data, counter->_begin + 36, 4);
    if (!values || values->_end - values->_begin < offset + static_cast<std::uint64_t>(size))
        return Failure::NO_COUNTER;
    return numberAt(data, values->_begin + offset, size);
}

Result resultOf(const Bytes& data, std::uint32_t objectIndex, std::uint32_t counterIndex,
                const char* instance)
{
    try
    {
        return Zu::prCounterValueIn(data, objectIndex, counterIndex, instance);
    }
    catch (const Zu::PrEx::ExBadCounterObjectIndex&)
    {
        return Failure::NO_OBJECT;
    }
    catch (const Zu::PrEx::ExBadCounterInstance&)
    {
        return Failure::NO_INSTANCE;
    }
    catch (const Zu::PrEx::ExBadCounterIndex&)
    {
        return Failure::NO_COUNTER;
    }
    catch (const Zu::PrEx::ExUnsupported&)
    {
        return Failure::UNSUPPORTED;
    }
    catch (const Zu::ExInternalError&)
    {
        return Failure::WITHOUT_VALUE;
    }
}

void run(fuzz::Input input)
{
    const std::uint32_t objectIndex = input.takeByte();
    const std::uint32_t counterIndex = input.takeByte();
    const std::uint8_t letter = input.takeByte();
    const std::string name(letter == 0 ? 0 : 1, static_cast<char>(letter));
    Bytes data = input.takeRest();
    data.shrink_to_fit();
    const auto object = findObject(data, objectIndex);
    if (!object)
    {
        FUZZ_REQUIRE(resultOf(data, objectIndex, counterIndex, nullptr) ==
                     Result(Failure::NO_OBJECT));
        FUZZ_REQUIRE(resultOf(data, objectIndex, counterIndex, name.c_str()) ==
                     Result(Failure::NO_OBJECT));
        return;
    }
    // An instance is named exactly if the object has instances; otherwise an assertion fails.
    const char* const instance = instancesOf(data, *object) < 1 ? nullptr : name.c_str();
    FUZZ_REQUIRE(resultOf(data, objectIndex, counterIndex, instance) ==
                 expectedOf(data, *object, counterIndex, name));
}

} // namespace

FUZZ_TARGET(performanceData, run);
