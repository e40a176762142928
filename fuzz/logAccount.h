// An account of the bytes of a log file: where each of them went.

#ifndef ZU_FUZZ_LOGACCOUNT_H
#define ZU_FUZZ_LOGACCOUNT_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace fuzz
{

// Every byte of a log belongs to one record, is a line end, or is in a line that belongs to the
// banner or dates others. Nothing else may be left out.
class LogAccount
{
public:
    // The text must outlive the account.
    explicit LogAccount(std::string_view text) : _text(text) {}

    // The next record: its bytes, its first line's number, and whether a banner begins with it.
    void add(std::string_view raw, std::uint64_t line, bool isStart);

    // No further records.
    void finish();

private:
    void skipMark();
    void takeLineEnd();

    const std::string_view _text;
    std::size_t _at = 0;
    std::uint64_t _line = 1;
    bool _isInBanner = false;
    // Behind the date, whose line may be followed by an empty one.
    bool _isEmptyLineDue = false;
};

// Line ends, and that of a last line without one.
std::uint64_t linesOf(std::string_view text);

} // namespace fuzz

#endif
