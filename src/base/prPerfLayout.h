/// @file
/// The records of the platform's performance data. Internal to the library.

#ifndef ZU_BASE_PRPERFLAYOUT_H
#define ZU_BASE_PRPERFLAYOUT_H

#include <cstddef>

/// The offsets of the fields that are read, in bytes from the beginning of their record, and the
/// minimum size of each record. All fields have 32 bits.
namespace Zu::PrPerfLayout
{

/// PERF_DATA_BLOCK.
namespace block
{
constexpr std::size_t TOTAL_LENGTH = 20;
constexpr std::size_t HEADER_LENGTH = 24;
constexpr std::size_t SIZE = 88;
} // namespace block

/// PERF_OBJECT_TYPE.
namespace object
{
constexpr std::size_t TOTAL_LENGTH = 0;
constexpr std::size_t DEFINITION_LENGTH = 4;
constexpr std::size_t HEADER_LENGTH = 8;
constexpr std::size_t NAME_INDEX = 12;
constexpr std::size_t COUNTERS = 32;
constexpr std::size_t INSTANCES = 40;
constexpr std::size_t SIZE = 64;
} // namespace object

/// PERF_COUNTER_DEFINITION.
namespace counter
{
constexpr std::size_t LENGTH = 0;
constexpr std::size_t NAME_INDEX = 4;
constexpr std::size_t TYPE = 28;
constexpr std::size_t OFFSET = 36;
constexpr std::size_t SIZE = 40;
} // namespace counter

/// PERF_INSTANCE_DEFINITION.
namespace instances
{
constexpr std::size_t LENGTH = 0;
constexpr std::size_t NAME_OFFSET = 16;
constexpr std::size_t SIZE = 24;
} // namespace instances

/// PERF_COUNTER_BLOCK.
namespace values
{
constexpr std::size_t LENGTH = 0;
constexpr std::size_t SIZE = 4;
} // namespace values

} // namespace Zu::PrPerfLayout

#endif
