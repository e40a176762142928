// No text of the library depends on a locale. Every operation that writes one is run in a plain
// process and under locales with a comma and groups, and writes the same bytes.

#include "base/base.h"
#include "base/lgStdText.h"

#include "support/commaLocale.h"
#include "support/logTest.h"
#include "support/platform.h"
#include "support/ringText.h"
#include "support/streamCapture.h"

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <iomanip>
#include <memory>
#include <ostream>
#include <sstream>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

ZU_DEFINE_LOG_GROUP(Locale);

ZU_TRACE_LEVEL(Locale);

namespace
{

using support::coutOf;
using support::ringTextOf;

// What an operation writes, as one text.
struct Operation
{
    const char* _name;
    std::function<std::string()> _text;
};

// What an insertion operator writes on a new stream, which has the global locale.
template <class T> std::string textOf(const T& value)
{
    std::ostringstream os;
    os << value;
    return os.str();
}

// The same with a format that the number keeps.
template <class T> std::string formattedTextOf(const T& value)
{
    std::ostringstream os;
    os << std::fixed << std::setprecision(3) << std::showpos << value;
    return os.str();
}

template <class Act> std::string writtenBy(Act act)
{
    std::ostringstream os;
    act(os);
    return os.str();
}

// Masks only the digits of varying values: points and separators remain visible.
std::string withoutDigits(std::string text)
{
    for (char& character : text)
        if (character >= '0' && character <= '9') character = '9';
    return text;
}

// Of the date in a banner, too, the letters.
std::string withoutDate(const std::string& text)
{
    std::istringstream lines(text);
    std::string result;
    for (std::string line; std::getline(lines, line);)
        result += line.find("Started on") == std::string::npos ? withoutDigits(line) + "\n" : "\n";
    return result;
}

class FixedProfiler : public Zu::ProfilerBase
{
public:
    void setName(const char*) override {}
    const char* getName() const override
    {
        return "fixed";
    }
    void start() override {}
    void stop() override {}
    void endCycle() override {}
    void reset() override {}
    double cycleTime() const override
    {
        return 1.5;
    }
    double totalTime() const override
    {
        return 1234567.5;
    }
    double averageTime() const override
    {
        return 12345.25;
    }
    double minTime() const override
    {
        return 0.125;
    }
    double maxTime() const override
    {
        return 98765.4321;
    }
    double standardDeviation() const override
    {
        return 1e-9;
    }
    int cycles() const override
    {
        return 1234567;
    }
};

class FixedTimer : public Zu::TimerBase
{
public:
    void setName(const char*) override {}
    const char* getName() const override
    {
        return "fixed";
    }
    void start() override {}
    void stop() override {}
    void reset() override {}
    double totalTime() const override
    {
        return 12345.75;
    }
};

std::string consolidatorText()
{
    FixedProfiler profiler;
    Zu::ProfConsolidator consolidator;
    consolidator.consolidate(profiler);
    return textOf(consolidator);
}

template <class T> std::string histogramTexts()
{
    Zu::RnLecuyerUniformRng<T> source;
    Zu::RnHistogram<T> histogram(3, T(0), T(1));
    histogram.addSamples(&source, 9000);
    return writtenBy([&](std::ostream& os) { histogram.dumpText(os); }) +
           writtenBy([&](std::ostream& os) { histogram.dumpInventor(os); });
}

template <class T> std::string histogramBiTexts()
{
    Zu::RnLecuyerUniformRng<T> x;
    Zu::RnLecuyerUniformRng<T> y;
    Zu::RnAsymmetricalSeparableBiRng<T> source(&x, &y);
    Zu::RnHistogramBi<T> histogram(2, 2, T(0), T(1), T(0), T(1));
    histogram.addSamples(&source, 9000);
    return writtenBy([&](std::ostream& os) { histogram.dumpText(os); }) +
           writtenBy([&](std::ostream& os) { histogram.dumpInventor(os); });
}

template <class T> std::string directionalTexts()
{
    Zu::RnLecuyerUniformRng<T> source;
    Zu::RnAsymmetricalSeparableBiRng<T> pairs(&source, &source);
    Zu::RnUniformSphericalRng<T> directions(&pairs);
    Zu::RnHistogramSpherical<T> histogram(2, 2);
    histogram.addSamples(&directions, 9000);
    return writtenBy([&](std::ostream& os) { histogram.dumpText(os); }) +
           writtenBy([&](std::ostream& os) { histogram.dumpInventor(os); });
}

std::string envVarTexts()
{
    const Zu::EnvVar text("ZU_LOCALE_TEST_TEXT", "text");
    const Zu::EnvIntVar number("ZU_LOCALE_TEST_INT", 1234567);
    const Zu::EnvDoubleVar fraction("ZU_LOCALE_TEST_DOUBLE", 12345.5);
    return textOf(text) + textOf(number) + textOf(fraction) + formattedTextOf(fraction);
}

Zu::DtRefTime refTime()
{
    const Zu::DtRefTimeFactory& factory = Zu::DtRefTimeFactory::getInstance();
    return factory.create(Zu::DtTimeIndex(1234567), factory.getClockSource().getName());
}

std::string traceTexts()
{
    Zu::Trace::setOptions("line,show=Locale");
    Zu::Trace trace;
    std::string text = writtenBy([&](std::ostream& os) { trace.prefix(os, __FILE__, 12345); });
    text += writtenBy([&](std::ostream& os) { trace.log(os, __FILE__, 1234567); });
    text += writtenBy([&](std::ostream& os)
                      { trace.print(os, __FILE__, 12345, "%.2f %d", 1234.5, 1234567); });
    text += writtenBy([](std::ostream& os) { Zu::Trace::printLevels(os); });
    text += coutOf([] { ZU_TRACE(Locale, "operands " << 1234.5 << ' ' << 1234567); });
    text += coutOf([] { ZU_TRACE_SCOPE(Locale, "scope"); });
    const Zu::ExInternalError exception("file", 12345, "reason");
    text += coutOf([&] { Zu::Trace().printException(exception, __FILE__, 54321); });
    Zu::Trace::setOptions("reset");
    return text;
}

// Those that have insertion operators of their own for the log.
std::string valuesInTheLog()
{
    using namespace std::chrono_literals;
    const Zu::Rational rate(1234567, 1001);
    return ringTextOf(rate) + ringTextOf(Zu::DtTime(Zu::DtTimeIndex(1234567), rate)) +
           ringTextOf(Zu::Interval<double>(-1234.5, 1234567.25)) + ringTextOf(refTime()) +
           ringTextOf(Zu::lgHex(0x1234567)) + ringTextOf(Zu::lgDecimals(12345.678, 2)) +
           ringTextOf(Zu::lgShortest(12345.678)) + ringTextOf(Zu::lgWidth(1234567, 12)) +
           ringTextOf(1234567ms) + ringTextOf(std::chrono::duration<double>(12345.5)) +
           ringTextOf(std::chrono::system_clock::time_point(1795364708125ms)) +
           ringTextOf(std::error_code(12345, std::generic_category())) +
           ringTextOf(std::this_thread::get_id());
}

// Statements of all kinds of numbers, as lines of standard output.
std::string directLines()
{
    return coutOf(
        []
        {
            ZU_LOG_WARNING(Locale, "numbers " << 1234567 << ' ' << 1234.5F << ' ' << 1234.5 << ' '
                                              << 1234.5L << ' ' << true << ' ' << 7654321LL);
        });
}

std::string exceptionTexts()
{
    const Zu::ExInternalError internal("file", 1234567, "reason");
    errno = ENOENT;
    const Zu::ExSysErrorANSI system("file", 7654321);
    std::string text = std::string(internal.getDetailedReason()) + system.getDetailedReason();
    try
    {
        Zu::DtTimeUtil::getDtTimeFromDtString("nonsense");
    }
    catch (const Zu::ExBase& exception)
    {
        text += exception.getReason();
    }
    return text;
}

// The heap manager without its package.
class Heap : public Zu::HmHeapMgr
{
};

class CycleGroup : public Zu::TestGroup
{
public:
    CycleGroup() : TestGroup("localeCycles") {}

    void run(int, char** const) override {}
};

std::string performanceTexts()
{
    const support::TempDir dir;
    support::writeBytes(dir.file("groups"), "localeCycles 2 1234567\n");
    // Groups stay registered.
    static const CycleGroup group;
    Zu::TestPerformer& performer = Zu::TestPerformer::getInstance();
    const std::string cycles =
        coutOf([&] { performer.execute(Zu::OsFilePath(dir.file("groups").c_str())); });
    return withoutDigits(cycles + textOf(performer));
}

std::vector<Operation> operations()
{
    using Zu::DtTime;
    using Zu::DtTimeIndex;
    using Zu::Interval;
    using Zu::Rational;
    const Rational rate(1234567, 1001);
    const DtTime time(DtTimeIndex(123456789012345), rate);
    return {
        {"interval of double", [] { return textOf(Interval<double>(-1234.5, 1234567.25)); }},
        {"interval of float", [] { return formattedTextOf(Interval<float>(-1234.5F, 0.5F)); }},
        {"interval of indices",
         [] { return textOf(Interval<DtTimeIndex>(DtTimeIndex(-12345), DtTimeIndex(1234567))); }},
        {"rational", [=] { return textOf(rate) + formattedTextOf(rate); }},
        {"index", [] { return textOf(DtTimeIndex(1234567890123)); }},
        {"time", [=] { return textOf(time) + formattedTextOf(time); }},
        {"reference time", [] { return textOf(refTime()); }},
        {"time mark", [=] { return textOf(Zu::DtTimeMark(time, refTime())); }},
        {"time string",
         [=] {
             return std::string(
                 Zu::ArrayPtr<char>(Zu::DtTimeUtil::getDtStringFromDtTime(time)).get());
         }},
        {"environment variables", envVarTexts},
        {"timer", [] { return textOf<Zu::TimerBase>(FixedTimer()); }},
        {"profiler", [] { return textOf<Zu::ProfilerBase>(FixedProfiler()); }},
        {"profiler in the log", [] { return ringTextOf<Zu::ProfilerBase>(FixedProfiler()); }},
        {"consolidator", consolidatorText},
        {"counter",
         []
         {
             const Zu::HwCounterIA32 counter(3579545, 1001, 0);
             return writtenBy([&](std::ostream& os) { counter.dump(os); });
         }},
        {"float in the log", [] { return ringTextOf(-1234.5F); }},
        {"double in the log", [] { return ringTextOf(1234567.5) + ringTextOf(1e300); }},
        {"long double in the log",
         [] { return ringTextOf(1.5L) + ringTextOf(-1234567.125L) + ringTextOf(1e4000L); }},
        {"integer in the log", [] { return ringTextOf(1234567) + ringTextOf(-7654321012345LL); }},
        {"bool in the log", [] { return ringTextOf(true); }},
        {"values in the log", valuesInTheLog},
        {"histogram of double", histogramTexts<double>},
        {"histogram of float", histogramTexts<float>},
        {"histogram of two dimensions", histogramBiTexts<double>},
        {"histogram of two dimensions, float", histogramBiTexts<float>},
        {"histogram of directions", directionalTexts<double>},
        {"histogram of directions, float", directionalTexts<float>},
        {"traces", traceTexts},
        {"direct log lines", directLines},
        {"direct trace", [] { return coutOf([] { Zu::LgTrace::print("1234567.5"); }); }},
        {"groups of the log",
         [] { return writtenBy([](std::ostream& os) { Zu::LgMajorGroup::printAll(os); }); }},
        {"set-up of the log", [] { return coutOf([] { Zu::LgLog::displaySetup(); }); }},
        {"exceptions", exceptionTexts},
        {"packages",
         [] { return writtenBy([](std::ostream& os) { Zu::InInitMgr::getInstance().dump(os); }); }},
        {"builds",
         [] {
             return writtenBy([](std::ostream& os)
                              { Zu::DbgBuildInfoMgr::printBuildInfo(os, true); });
         }},
        {"libraries", [] { return support::printedBy([] { Zu::LmLibraries::dumpList(); }); }},
        {"heap", [] { return writtenBy([](std::ostream& os) { Heap().dump(os); }); }},
        {"path", []
         { return writtenBy([](std::ostream& os) { Zu::OsFilePath("a/1234567.5").dump(os); }); }},
        {"groups of tests", [] { return coutOf([] { Zu::TestGroup::printInstances(); }); }},
        {"performance", performanceTexts},
    };
}

using Texts = std::vector<std::pair<std::string, std::string>>;

// With logger and group running for the statements.
class Locale : public support::LogFilesTest
{
protected:
    Locale()
    {
        set("ZU_LOG_GROUPS", "Locale=Tracing");
        init();
        ZU_START_LOG_GROUP("Locale", Locale);
        // Objects that register themselves at their first use exist from here on.
        texts();
    }

    ~Locale() override
    {
        ZU_STOP_LOG_GROUP(Locale);
    }

    static Texts texts()
    {
        Texts result;
        for (const Operation& operation : operations())
            result.emplace_back(operation._name, operation._text());
        return result;
    }

    // What a run of the logger writes into its files.
    std::string logFiles()
    {
        destroy();
        init();
        support::Entered<Zu::LgQueue> queue(0xabcU);
        support::addEvent(queue, Zu::LgTypes::Error, "text");
        support::setTimeOfNext(queue, 12345678901234U);
        Zu::LgReader().flushAll();
        support::addEvent(queue, Zu::LgTypes::Error, ringTextOf<Zu::ProfilerBase>(FixedProfiler()));
        support::setTimeOfNext(queue, 1U);
        Zu::LgReader().flushAll();
        if (std::ostream* const output = Zu::LgLog::getLevelOutput(Zu::LgTypes::Error))
            *output << 1234567.5 << '\n';
        destroy();
        const std::string text = support::bytesOf(logFile("events.log"));
        init();
        return withoutDate(text);
    }

    static void expectSame(const Texts& plain, const Texts& other, const char* where)
    {
        ASSERT_EQ(plain.size(), other.size());
        for (std::size_t i = 0; i < plain.size(); ++i)
            EXPECT_EQ(other[i].second, plain[i].second) << plain[i].first << " under " << where;
    }
};

TEST_F(Locale, NoTextDependsOnTheLocaleOfStreams)
{
    const Texts plain = texts();
    const std::string files = logFiles();
    const support::CommaStreams comma;
    ASSERT_EQ(textOf(1234.5), "1.234,5");
    expectSame(plain, texts(), "std::locale::global()");
    EXPECT_EQ(logFiles(), files);
}

TEST_F(Locale, NoTextDependsOnSetlocale)
{
    const Texts plain = texts();
    const std::string files = logFiles();
    const support::CommaNumerals comma;
    if (!comma.isSet()) GTEST_SKIP() << "there is no locale with a comma here, nor localedef";
    expectSame(plain, texts(), "setlocale()");
    EXPECT_EQ(logFiles(), files);
}

TEST_F(Locale, NoTextDependsOnBothTogether)
{
    const Texts plain = texts();
    const std::string files = logFiles();
    const support::CommaNumerals numerals;
    const support::CommaStreams streams;
    if (!numerals.isSet()) GTEST_SKIP() << "there is no locale with a comma here, nor localedef";
    expectSame(plain, texts(), "both");
    EXPECT_EQ(logFiles(), files);
}

// The operations write what the test is about.
TEST_F(Locale, TheTextsHaveNumbersThatALocaleWouldChange)
{
    int count = 0;
    for (const auto& [name, text] : texts())
    {
        EXPECT_FALSE(text.empty() && name != "groups of tests") << name;
        if (text.find('.') != std::string::npos) ++count;
    }
    EXPECT_GE(count, 25);
}

// A catalogue of texts in another language, as the runtime reads it: a header, the places of the
// texts and of their translations, and all of these.
std::string catalogue(const std::string& text, const std::string& translation)
{
    const std::string header = "Content-Type: text/plain; charset=UTF-8\n";
    const std::string strings[] = {"", text, header, translation};
    std::uint32_t words[7 + 8] = {0x950412de, 0, 2, 28, 44, 0, 60};
    std::string bytes;
    for (std::size_t i = 0; i < 4; ++i)
    {
        words[7 + 2 * i] = static_cast<std::uint32_t>(strings[i].size());
        words[8 + 2 * i] = static_cast<std::uint32_t>(sizeof words + bytes.size());
        bytes += strings[i] + '\0';
    }
    return std::string(reinterpret_cast<const char*>(words), sizeof words) + bytes;
}

TEST_F(Locale, ErrorsOfTheSystemAreInNoOtherLanguage)
{
    if (support::onWindows) GTEST_SKIP() << "the runtime of Windows knows one language";
    const support::CommaNumerals comma;
    if (!comma.isSet()) GTEST_SKIP() << "there is no locale with a comma here, nor localedef";
    const support::VariableGuard language("LANGUAGE");
    language.set("");
    const support::TempDir dir;
    const std::string name = support::translateRuntime(dir.path());
    const std::filesystem::path folder = std::filesystem::path(dir.path()) / name / "LC_MESSAGES";
    std::filesystem::create_directories(folder);
    support::writeBytes((folder / "libc.mo").string(),
                        catalogue("No such file or directory", "Das gibt es nicht"));
    EXPECT_STREQ(std::strerror(ENOENT), "Das gibt es nicht");
    errno = ENOENT;
    EXPECT_STREQ(Zu::ExSysErrorANSI("file", 1).getReason(), "No such file or directory");
    errno = ENOENT;
    EXPECT_STREQ(Zu::ExSysErrorWindows("file", 1).getReason(), "No such file or directory");
    try
    {
        Zu::Assertions::throwSysAssertionFailed("file", 1, "x", ENOENT);
    }
    catch (const Zu::ExBase& exception)
    {
        EXPECT_STREQ(exception.getReason(),
                     "Assertion 'x' failed, errno = 2 (No such file or directory).");
    }
    support::translateRuntime("");
}

TEST_F(Locale, AStreamKeepsItsLocale)
{
    const support::CommaStreams comma;
    std::ostringstream os;
    os << Zu::Rational(3, 2) << ' ' << 1234.5;
    EXPECT_EQ(os.str(), "(3/2=1.5) 1.234,5");
}

TEST_F(Locale, ProgramsKeepTheNumeralsThatTheySet)
{
    const support::CommaNumerals comma;
    if (!comma.isSet()) GTEST_SKIP() << "there is no locale with a comma here, nor localedef";
    EXPECT_EQ(ringTextOf(1.5L), "1.500000");
    char text[40];
    std::snprintf(text, sizeof text, "%.1f", 1.5);
    EXPECT_STREQ(text, "1,5");
}

} // namespace
