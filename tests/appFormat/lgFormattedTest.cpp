#include "appFormat/lgFormatted.h"

#include "base/lgEvent.h"
#include "base/lgMajorGroup.h"
#include "support/runningLogger.h"
#include "support/streamCapture.h"

#include <gtest/gtest.h>
#include <iostream>
#include <limits>
#include <string>
#include <vector>

ZU_DEFINE_LOG_GROUP(Formatted);

namespace formatted
{

struct Order
{
    int _number;
};

} // namespace formatted

template <> struct fmt::formatter<formatted::Order> : fmt::formatter<int>
{
    template <class Context> auto format(const formatted::Order& order, Context& context) const
    {
        return fmt::formatter<int>::format(order._number, context);
    }
};

namespace
{

class LgFormatted : public testing::Test
{
protected:
    LgFormatted()
    {
        Zu::LgMajorGroup::parse("FormattedMajor=Warning");
        ZU_START_LOG_GROUP("FormattedMajor", Formatted);
    }

    ~LgFormatted() override
    {
        ZU_STOP_LOG_GROUP(Formatted);
    }

    support::RunningLogger _logger;
    support::StreamCapture _capture{std::cout};
};

// A statement, and what libfmt itself makes of its format.
struct Row
{
    void (*_log)();
    std::string (*_format)();
};

#define STATEMENT(...)                                                                             \
    {                                                                                              \
        [] { ZU_LOGF_WARNING(Formatted, __VA_ARGS__); }, [] { return fmt::format(__VA_ARGS__); }   \
    }

const std::string TEXT = "a text";

const Row ROWS[] = {
    STATEMENT("nothing"),
    STATEMENT("order {} is late by {:.1f} days", 4711, 2.25),
    STATEMENT("{1}{0} {{}} {0}", TEXT, 'c'),
    STATEMENT("{:>10}|{:<10}|{:^10}|{:*^9}", TEXT, TEXT, TEXT, -42),
    STATEMENT("{:#x} {:#b} {:+} {:08.3f} {:e} {}", 255, 5, 7, -3.14159, 12345.678, 0.1),
    STATEMENT("{:{}.{}f}", 2.0 / 3, 12, 4),
    STATEMENT("{} {} {}", true, std::numeric_limits<unsigned long long>::max(),
              std::numeric_limits<long long>::min()),
    STATEMENT("{}", formatted::Order{17}),
    STATEMENT("{:?>5}", formatted::Order{17}),
    STATEMENT("{}", std::string(499, 'x')),
    STATEMENT("{}{}", std::string(499, 'x'), std::string(3000, 'y')),
};

TEST_F(LgFormatted, HasTheBytesOfFmt)
{
    for (const Row& row : ROWS)
    {
        const std::string before = _capture.text();
        row._log();
        EXPECT_EQ(_capture.text(), before + "Formatted " + row._format() + "\n");
    }
}

TEST_F(LgFormatted, SaysWhatItIsMeantToSay)
{
    ZU_LOGF_ERROR(Formatted, "order {} is late by {:.1f} days", 4711, 2.25);
    ZU_LOGF_FATAL_ERROR(Formatted, "no argument");
    ZU_LOGF_INTERNAL_ERROR(Formatted, "{}", "text");
    ZU_LOGF(Formatted, Zu::LgTypes::Warning, "{:04}", 7);
    EXPECT_EQ(_capture.text(), "Formatted order 4711 is late by 2.2 days\nFormatted no argument\n"
                               "Formatted text\nFormatted 0007\n");
}

TEST_F(LgFormatted, ADisabledLevelEvaluatesNothing)
{
    int evaluated = 0;
    ZU_LOGF_INFORMATIONAL(Formatted, "{}", ++evaluated);
    ZU_LOGF_TRACING(Formatted, "{}", ++evaluated);
    ZU_LOGF_PROFILING(Formatted, "{}", ++evaluated);
    EXPECT_EQ(evaluated, 0);
    ZU_LOGF_WARNING(Formatted, "{}", ++evaluated);
    EXPECT_EQ(_capture.text(), "Formatted 1\n");
}

void logWide(int width)
{
    ZU_LOGF_WARNING(Formatted, "text {:{}}", 1, width);
}

void logText(const std::string& text)
{
    ZU_LOGF_WARNING(Formatted, "a {}", text);
}

TEST_F(LgFormatted, AWrongValueLeavesNoPartOfTheEvent)
{
    Zu::LgQueue queue;
    static Zu::LgQueue* theQueue = nullptr;
    theQueue = &queue;
    Zu::LgLog::setQueueFunction([] { return theQueue; });
    Zu::LgLog::setLoggerActivation(true);
    EXPECT_THROW(logWide(-1), fmt::format_error);
    EXPECT_TRUE(queue.isEmpty());
    logText(std::string("b\0c", 3));
    Zu::LgLog::setLoggerActivation(false);
    std::vector<char> text(Zu::LgStream::BufSize);
    queue.getStream() >> text.data();
    queue.removeEntry();
    EXPECT_STREQ(text.data(), "Formatted a b") << "up to the first NUL";
    EXPECT_TRUE(queue.isEmpty());
}

} // namespace
