/// @file
/// What a run of tests has found, as texts. Internal to the kit.

#ifndef ZU_APP_APTESTREPORT_H
#define ZU_APP_APTESTREPORT_H

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace Zu
{

/// What became of a group, or of something else that the run had to do.
struct ApTestResult
{
    std::string _name;
    /// Whether this is a group.
    bool _isGroup = true;
    std::chrono::microseconds _time{};
    std::uint64_t _checks = 0;
    std::uint64_t _failedChecks = 0;
    /// The texts of failed checks, possibly not of all.
    std::vector<std::string> _failures = {};
    /// The text of the exception that ended it; empty for none.
    std::string _error = {};

    std::uint64_t failures() const
    {
        return _failedChecks + (_error.empty() ? 0 : 1);
    }
};

/// Seconds with a point and this many decimals, from 0 to 6; what is beyond them is left out.
std::string apSeconds(std::chrono::microseconds time, unsigned decimals);

/// What is printed when a group has ended, with a line end.
std::string apTestLine(const ApTestResult& result);

/// The end of a run: the names of what has failed, and the line of sums; with line ends.
std::string apTestSummary(const std::vector<ApTestResult>& results, std::chrono::microseconds time);

/// The report in the form of JUnit's XML: one suite with a test case for each result.
std::string apTestJunit(const std::string& program, const std::vector<ApTestResult>& results,
                        std::chrono::microseconds time);

} // namespace Zu

#endif
