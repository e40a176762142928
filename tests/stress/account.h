// What became of events: the numbers of the producers, and what stands in the file.

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
    // Those after which the queue had not counted a loss, as each producer sees it for itself.
    std::uint64_t _accepted = 0;
    // The library's own total.
    std::uint64_t _lost = 0;
    // Accepted, and not taken by the file; once the service has ended.
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

// Producers from this one on write long texts. A queue has 32 characters for each of its places: of
// long texts its room for text runs out first, of short ones the places do.
constexpr unsigned WORDY = 10000;

// A part of the event with this number: of a different length from one to the next, and to be told
// to the byte by whoever reads it.
const char* fillerOf(unsigned producer, unsigned number);

// A log file, read back. Each line has to be whole, and each producer's numbers and times have to
// ascend, which also shows what is written twice.
struct FileAccount
{
    // Lines of events, the shortened ones among them.
    std::uint64_t _written = 0;
    // Lines in which "#" or nothing stands for parts that found no room in the queue.
    std::uint64_t _shortened = 0;
    std::uint64_t _overflowLines = 0;
    // Beginnings of lines without their ends.
    std::uint64_t _torn = 0;
    std::uint64_t _startBanners = 0;
    std::uint64_t _stopBanners = 0;
    std::map<unsigned, std::uint64_t> _writtenOf;
    // What does not belong there; the first few.
    std::vector<std::string> _errors;

    std::uint64_t writtenFrom(unsigned firstProducer, unsigned producers) const;
};

FileAccount read(std::istream& file);
FileAccount read(const std::string& path);

} // namespace stress

#endif
