#include "base/prPerfCounter.h"

#include "base/prPerfLayout.h"

#include <cstddef>
#include <windows.h>

namespace Zu
{

using namespace PrPerfLayout;

static_assert(block::TOTAL_LENGTH == offsetof(PERF_DATA_BLOCK, TotalByteLength));
static_assert(block::HEADER_LENGTH == offsetof(PERF_DATA_BLOCK, HeaderLength));
static_assert(block::SIZE == sizeof(PERF_DATA_BLOCK));
static_assert(object::TOTAL_LENGTH == offsetof(PERF_OBJECT_TYPE, TotalByteLength));
static_assert(object::DEFINITION_LENGTH == offsetof(PERF_OBJECT_TYPE, DefinitionLength));
static_assert(object::HEADER_LENGTH == offsetof(PERF_OBJECT_TYPE, HeaderLength));
static_assert(object::NAME_INDEX == offsetof(PERF_OBJECT_TYPE, ObjectNameTitleIndex));
static_assert(object::COUNTERS == offsetof(PERF_OBJECT_TYPE, NumCounters));
static_assert(object::INSTANCES == offsetof(PERF_OBJECT_TYPE, NumInstances));
static_assert(object::SIZE == sizeof(PERF_OBJECT_TYPE));
static_assert(counter::LENGTH == offsetof(PERF_COUNTER_DEFINITION, ByteLength));
static_assert(counter::NAME_INDEX == offsetof(PERF_COUNTER_DEFINITION, CounterNameTitleIndex));
static_assert(counter::TYPE == offsetof(PERF_COUNTER_DEFINITION, CounterType));
static_assert(counter::OFFSET == offsetof(PERF_COUNTER_DEFINITION, CounterOffset));
static_assert(counter::SIZE == sizeof(PERF_COUNTER_DEFINITION));
static_assert(instances::LENGTH == offsetof(PERF_INSTANCE_DEFINITION, ByteLength));
static_assert(instances::NAME_OFFSET == offsetof(PERF_INSTANCE_DEFINITION, NameOffset));
static_assert(instances::SIZE == sizeof(PERF_INSTANCE_DEFINITION));
static_assert(values::LENGTH == offsetof(PERF_COUNTER_BLOCK, ByteLength));
static_assert(PR_MORE_DATA == ERROR_MORE_DATA);

namespace
{

std::int32_t queryData(const char* valueName, unsigned char* buffer, std::uint32_t size)
{
    // The size that it reports is not reliable here.
    DWORD room = size;
    return RegQueryValueExA(HKEY_PERFORMANCE_DATA, valueName, nullptr, nullptr, buffer, &room);
}

// The query opens the data, and with them the libraries of their providers.
struct OpenData
{
    OpenData() = default;
    OpenData(const OpenData&) = delete;
    OpenData& operator=(const OpenData&) = delete;

    ~OpenData()
    {
        RegCloseKey(HKEY_PERFORMANCE_DATA);
    }
};

} // namespace

std::uint64_t prGetCounterValue(unsigned int objectIndex, unsigned int counterIndex,
                                const char* instance)
{
    const OpenData data;
    return prCounterValueIn(prPerformanceData(objectIndex, &queryData), objectIndex, counterIndex,
                            instance);
}

} // namespace Zu
