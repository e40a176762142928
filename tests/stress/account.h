// The fate of events: the numbers of the producers, and the content of the file.

#ifndef ZU_TESTS_STRESS_ACCOUNT_H
#define ZU_TESTS_STRESS_ACCOUNT_H

#include <cstdint>
#include <istream>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace stress
{

struct Account
{
    // Statements that were carried out.
    std::uint64_t _attempted = 0;
    // Statements after which the queue had not counted a loss, as seen by each producer.
    std::uint64_t _accepted = 0;
    // The library's own total.
    std::uint64_t _lost = 0;
    // Accepted, but not taken by the file; known after the service has ended.
    std::uint64_t _unwritten = 0;

    Account& operator+=(const Account& other)
    {
        _attempted += other._attempted;
        _accepted += other._accepted;
        _lost += other._lost;
        _unwritten += other._unwritten;
        return *this;
    }
};

// Producers from this id on write long texts. A queue has 32 characters for each of its slots: long
// texts exhaust its room for text first, short ones its slots.
constexpr unsigned WORDY = 10000;

// A part of the event with this number: its length varies from event to event, and a reader can
// predict it to the byte.
const char* fillerOf(unsigned producer, unsigned number);

// A log file, read back. Each line has to be whole, and each producer's numbers and times have to
// ascend, which also detects lines that are written twice.
struct FileAccount
{
    // Lines of events, shortened ones included.
    std::uint64_t _written = 0;
    // Lines in which "#" or nothing replaces parts that found no room in the queue.
    std::uint64_t _shortened = 0;
    std::uint64_t _overflowLines = 0;
    // Beginnings of lines without their ends.
    std::uint64_t _torn = 0;
    std::uint64_t _startBanners = 0;
    std::uint64_t _stopBanners = 0;
    std::map<unsigned, std::uint64_t> _writtenOf;
    // Unexpected content; the first few cases.
    std::vector<std::string> _errors;

    std::uint64_t writtenFrom(unsigned firstProducer, unsigned producers) const;
};

FileAccount read(std::istream& file);
FileAccount read(const std::string& path);

} // namespace stress

#endif
