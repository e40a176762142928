#include "base/prPerfCounter.h"

#include "base/exInternalError.h"
#include "base/internalAssert.h"
#include "base/prEx.h"
#include "base/prPerfLayout.h"

#include <cstdio>
#include <cstring>
#include <optional>
#include <span>

namespace Zu
{

namespace
{

using namespace PrPerfLayout;

// The size bits of a counter's type.
constexpr std::uint32_t SIZE_MASK = 0x300;
constexpr std::uint32_t SIZE_32_BITS = 0;
constexpr std::uint32_t SIZE_64_BITS = 0x100;
constexpr std::uint32_t SIZE_VARIABLE = 0x300;

using Bytes = std::span<const unsigned char>;

// The caller has checked that it is there.
template <class Number> Number numberAt(Bytes record, std::size_t offset)
{
    Number number;
    std::memcpy(&number, record.data() + offset, sizeof number);
    return number;
}

std::uint32_t fieldAt(Bytes record, std::size_t offset)
{
    return numberAt<std::uint32_t>(record, offset);
}

// The bytes from an offset on; empty beyond the end.
Bytes from(Bytes bytes, std::size_t offset)
{
    return offset > bytes.size() ? Bytes() : bytes.subspan(offset);
}

// The record at the beginning of the bytes, whose field at `lengthField` is its length; empty if
// the bytes don't contain it.
Bytes recordOf(Bytes bytes, std::size_t lengthField, std::size_t leastSize)
{
    if (bytes.size() < leastSize) return {};
    const std::uint32_t length = fieldAt(bytes, lengthField);
    if (length < leastSize || length > bytes.size()) return {};
    return bytes.first(length);
}

Bytes findObject(Bytes data, unsigned int index)
{
    if (data.size() < block::SIZE) return {};
    const std::uint32_t header = fieldAt(data, block::HEADER_LENGTH);
    if (header < block::SIZE) return {};
    const std::uint32_t total = fieldAt(data, block::TOTAL_LENGTH);
    Bytes rest = from(total < data.size() ? data.first(total) : data, header);
    for (;;)
    {
        const Bytes record = recordOf(rest, object::TOTAL_LENGTH, object::SIZE);
        if (record.empty() || fieldAt(record, object::NAME_INDEX) == index) return record;
        rest = rest.subspan(record.size());
    }
}

Bytes findCounter(Bytes record, unsigned int index)
{
    const std::uint32_t definitions = fieldAt(record, object::DEFINITION_LENGTH);
    Bytes rest = from(definitions < record.size() ? record.first(definitions) : record,
                      fieldAt(record, object::HEADER_LENGTH));
    for (std::uint32_t left = fieldAt(record, object::COUNTERS); left > 0; --left)
    {
        const Bytes definition = recordOf(rest, counter::LENGTH, counter::SIZE);
        if (definition.empty() || fieldAt(definition, counter::NAME_INDEX) == index)
            return definition;
        rest = rest.subspan(definition.size());
    }
    return {};
}

bool isNamed(Bytes definition, const char* name)
{
    const Bytes text = from(definition, fieldAt(definition, instances::NAME_OFFSET));
    const std::size_t size = std::strlen(name) + 1;
    return text.size() >= size && std::memcmp(text.data(), name, size) == 0;
}

// The values of an instance; empty if it isn't there.
Bytes findInstance(Bytes record, std::int32_t count, const char* name)
{
    Bytes rest = from(record, fieldAt(record, object::DEFINITION_LENGTH));
    for (; count > 0; --count)
    {
        const Bytes definition = recordOf(rest, instances::LENGTH, instances::SIZE);
        if (definition.empty()) return {};
        const Bytes behind = rest.subspan(definition.size());
        const Bytes block = recordOf(behind, values::LENGTH, values::SIZE);
        if (block.empty() || isNamed(definition, name)) return block;
        rest = behind.subspan(block.size());
    }
    return {};
}

// The values of the object or of its instance.
Bytes findValues(Bytes record, const char* instance)
{
    const auto count = numberAt<std::int32_t>(record, object::INSTANCES);
    if (count < 1)
    {
        ZU_INTERNAL_ASSERT_TEXT(instance == nullptr, "instance == 0");
        return recordOf(from(record, fieldAt(record, object::DEFINITION_LENGTH)), values::LENGTH,
                        values::SIZE);
    }
    ZU_INTERNAL_ASSERT_TEXT(instance != nullptr, "instance != 0");
    const Bytes block = findInstance(record, count, instance);
    if (block.empty()) throw PrEx::ExBadCounterInstance(__FILE__, __LINE__, instance);
    return block;
}

template <class Number> std::optional<std::uint64_t> valueAt(Bytes block, std::uint32_t offset)
{
    if (from(block, offset).size() < sizeof(Number)) return std::nullopt;
    return numberAt<Number>(block, offset);
}

std::optional<std::uint64_t> valueOf(Bytes block, Bytes definition)
{
    const std::uint32_t offset = fieldAt(definition, counter::OFFSET);
    switch (fieldAt(definition, counter::TYPE) & SIZE_MASK)
    {
    case SIZE_32_BITS:
        return valueAt<std::uint32_t>(block, offset);
    case SIZE_64_BITS:
        return valueAt<std::uint64_t>(block, offset);
    case SIZE_VARIABLE:
        throw PrEx::ExUnsupported(__FILE__, __LINE__);
    default:
        throw ExInternalError(__FILE__, __LINE__, "A performance counter without a value.");
    }
}

} // namespace

std::vector<unsigned char> prPerformanceData(unsigned int objectIndex, const PrQuery& query,
                                             std::uint32_t largest)
{
    constexpr std::uint32_t FIRST_SIZE = 8192;
    constexpr std::uint32_t STEP = 1024;

    char valueName[20];
    std::snprintf(valueName, sizeof valueName, "%d", static_cast<int>(objectIndex));
    for (std::uint32_t size = FIRST_SIZE; size <= largest; size += STEP)
    {
        std::vector<unsigned char> buffer(size);
        if (query(valueName, buffer.data(), size) != PR_MORE_DATA) return buffer;
    }
    throw ExInternalError(__FILE__, __LINE__, "Performance data without an end.");
}

std::uint64_t prCounterValueIn(const std::vector<unsigned char>& data, unsigned int objectIndex,
                               unsigned int counterIndex, const char* instance)
{
    const Bytes record = findObject(data, objectIndex);
    if (record.empty()) throw PrEx::ExBadCounterObjectIndex(__FILE__, __LINE__, objectIndex);
    const Bytes block = findValues(record, instance);
    const Bytes definition = findCounter(record, counterIndex);
    if (definition.empty()) throw PrEx::ExBadCounterIndex(__FILE__, __LINE__, counterIndex);
    const std::optional<std::uint64_t> value = valueOf(block, definition);
    if (!value) throw PrEx::ExBadCounterIndex(__FILE__, __LINE__, counterIndex);
    return *value;
}

} // namespace Zu
