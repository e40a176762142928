#include "app/lgServiceOptions.h"

#include "support/commaLocale.h"
#include "support/streamCapture.h"
#include "support/variableGuard.h"

#include <chrono>
#include <cstdint>
#include <fstream>
#include <gtest/gtest.h>
#include <iomanip>
#include <iostream>
#include <iterator>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace
{

using Options = Zu::LgServiceOptions;
using Texts = std::vector<std::string>;

using namespace std::chrono_literals;

const char* const TRUTH = "true or false, yes or no, on or off, 1 or 0";
const char* const FILE_NAME =
    "the name of a file in the log directory, without slashes, backslashes and colons";
const char* const ANY_TEXT = "any text, without null characters";
const char* const TIME_SPAN = "a number of milliseconds from 0 to 3600000, with ms behind it if "
                              "wanted, or of seconds with s, e.g. 5s";

// Every option with its variable and what it expects; one text that is not its default, and how
// that is shown; and its default, as shown.
struct Known
{
    const char* _name;
    const char* _variable;
    std::string _expected;
    const char* _text;
    const char* _shown;
    const char* _default;
};

const Known KNOWN[] = {
    {"directory", "ZU_LOG_SERVICE_DIRECTORY", ANY_TEXT, "/var/log/my shop", "\"/var/log/my shop\"",
     "\"\""},
    {"events-name", "ZU_LOG_SERVICE_EVENTS_NAME", FILE_NAME, "shop.log", "\"shop.log\"",
     "\"events.log\""},
    {"profiles-name", "ZU_LOG_SERVICE_PROFILES_NAME", FILE_NAME, "spans.log", "\"spans.log\"",
     "\"prof.log\""},
    {"process-in-names", "ZU_LOG_SERVICE_PROCESS_IN_NAMES", TRUTH, "1", "true", "false"},
    {"line-form", "ZU_LOG_SERVICE_LINE_FORM", "ticks, local or utc", "utc", "utc", "ticks"},
    {"raw-text", "ZU_LOG_SERVICE_RAW_TEXT", TRUTH, "yes", "true", "false"},
    {"source-location", "ZU_LOG_SERVICE_SOURCE_LOCATION", TRUTH, "on", "true", "false"},
    {"rotate-size", "ZU_LOG_SERVICE_ROTATE_SIZE",
     "a number of bytes from 0 to 1024G, with K, M or G behind it if wanted, e.g. 64M", "64M",
     "67108864", "0"},
    {"rotate-time", "ZU_LOG_SERVICE_ROTATE_TIME", "HH:MM from 00:00 to 23:59, or none", "03:07",
     "03:07", "none"},
    {"kept-files", "ZU_LOG_SERVICE_KEPT_FILES", "a whole number from 1 to 1000", "7", "7", "10"},
    {"compress", "ZU_LOG_SERVICE_COMPRESS", TRUTH, "true", "true", "false"},
    {"reopen-on-hangup", "ZU_LOG_SERVICE_REOPEN_ON_HANGUP", TRUTH, "on", "true", "false"},
    {"entries", "ZU_LOG_SERVICE_ENTRIES",
     "a whole number from 64 to 1048576; rounded up to a power of two", "5000", "8192", "4096"},
    {"characters", "ZU_LOG_SERVICE_CHARACTERS",
     "a number of bytes from 64K to 64M, with K, M or G behind it if wanted, e.g. 64M; rounded up "
     "to a power of two",
     "1M", "1048576", "262144"},
    {"memory-limit", "ZU_LOG_SERVICE_MEMORY_LIMIT",
     "a number of bytes from 1M to 1024G, with K, M or G behind it if wanted, e.g. 64M", "3G",
     "3221225472", "268435456"},
    {"wait-levels", "ZU_LOG_SERVICE_WAIT_LEVELS",
     "names of levels with commas between them, of Internal Error, Fatal Error, Error, Warning, "
     "Informational, Tracing, Profiling, or none",
     "warning, InternalError", "Internal Error,Warning", "none"},
    {"flush-level", "ZU_LOG_SERVICE_FLUSH_LEVEL",
     "one of Internal Error, Fatal Error, Error, Warning, Informational, Tracing, Profiling, or "
     "none",
     "Error", "Error", "none"},
    {"wait-limit", "ZU_LOG_SERVICE_WAIT_LIMIT", TIME_SPAN, "3s", "3000ms", "1000ms"},
    {"end-limit", "ZU_LOG_SERVICE_END_LIMIT", TIME_SPAN, "30s", "30000ms", "5000ms"},
    {"drain-on-fatal-signals", "ZU_LOG_SERVICE_DRAIN_ON_FATAL_SIGNALS", TRUTH, "1", "true",
     "false"},
    {"sync", "ZU_LOG_SERVICE_SYNC", TRUTH, "yes", "true", "false"},
    {"mapping-directory", "ZU_LOG_SERVICE_MAPPING_DIRECTORY", ANY_TEXT, "C:\\Mappings",
     "\"C:\\Mappings\"", "\"\""},
    {"kept-mappings", "ZU_LOG_SERVICE_KEPT_MAPPINGS", "a whole number from 1 to 10000", "9", "9",
     "100"},
    {"kept-mapping-days", "ZU_LOG_SERVICE_KEPT_MAPPING_DAYS", "a whole number from 1 to 3650",
     "365", "365", "30"},
    {"pending-limit", "ZU_LOG_SERVICE_PENDING_LIMIT",
     "a number of bytes from 64K to 1G, with K, M or G behind it if wanted, e.g. 64M", "128k",
     "131072", "1048576"},
    {"control", "ZU_LOG_SERVICE_CONTROL", TRUTH, "off", "false", "true"},
};

const Known& known(const std::string& name)
{
    for (const Known& row : KNOWN)
        if (row._name == name) return row;
    throw std::invalid_argument(name);
}

std::string displayed(const Options& options)
{
    std::ostringstream os;
    options.display(os);
    return os.str();
}

Texts linesOf(const std::string& text)
{
    std::istringstream is(text);
    Texts lines;
    for (std::string line; std::getline(is, line);) lines.push_back(line);
    return lines;
}

// What the display shows for this option.
std::string shownOf(const Options& options, const std::string& name)
{
    const std::string head = name + ": ";
    const std::string tail = std::string(" (") + known(name)._variable + ")";
    for (const std::string& line : linesOf(displayed(options)))
        if (line.compare(0, head.size(), head) == 0)
            return line.substr(head.size(), line.size() - head.size() - tail.size());
    return "not displayed";
}

std::string withoutQuotes(const std::string& shown)
{
    return shown.front() == '"' ? shown.substr(1, shown.size() - 2) : shown;
}

void setOrFail(Options& options, std::string_view name, std::string_view value)
{
    std::string error = "unchanged";
    EXPECT_TRUE(options.set(name, value, error)) << error;
    EXPECT_EQ(error, "unchanged");
}

// Options of which none has its default.
Options changedOptions()
{
    Options options;
    for (const Known& row : KNOWN) setOrFail(options, row._name, row._text);
    return options;
}

// Reads these entries, which are those of an environment; returns what is reported.
std::string readInto(Options& options, const Texts& entries)
{
    std::vector<const char*> pointers;
    for (const std::string& entry : entries) pointers.push_back(entry.c_str());
    pointers.push_back(nullptr);
    std::ostringstream messages;
    options.readEnvironment(pointers.data(), messages);
    return messages.str();
}

std::string expectedBy(const std::string& name)
{
    return ": expected " + known(name)._expected;
}

TEST(LgServiceOptions, DefaultsSuitALongRunningServer)
{
    const Options options;
    EXPECT_EQ(options._directory, "");
    EXPECT_EQ(options._eventsName, "events.log");
    EXPECT_EQ(options._profilesName, "prof.log");
    EXPECT_FALSE(options._processInNames);
    EXPECT_EQ(options._lineForm, Options::LineForm::Ticks);
    EXPECT_FALSE(options._rawText);
    EXPECT_EQ(options._rotateSize, 0U);
    EXPECT_EQ(options._rotateMinute, -1);
    EXPECT_EQ(options._keptFiles, 10);
    EXPECT_FALSE(options._compress);
    EXPECT_FALSE(options._reopenOnHangup);
    EXPECT_EQ(options._entries, 4096U);
    EXPECT_EQ(options._characters, 256U * 1024);
    EXPECT_EQ(options._memoryLimit, 256U * 1024 * 1024);
    EXPECT_EQ(options._endLimit, 5s);
    EXPECT_FALSE(options._drainOnFatalSignals);
    EXPECT_FALSE(options._sync);
    EXPECT_EQ(options._mappingDirectory, "");
    EXPECT_EQ(options._keptMappings, 100);
    EXPECT_EQ(options._keptMappingDays, 30);
    EXPECT_EQ(options._pendingLimit, 1024U * 1024);
    EXPECT_FALSE(options._sourceLocation);
    EXPECT_TRUE(options._control);
}

TEST(LgServiceOptions, EachNameSetsItsOwnField)
{
    const Options options = changedOptions();
    EXPECT_EQ(options._directory, "/var/log/my shop");
    EXPECT_EQ(options._eventsName, "shop.log");
    EXPECT_EQ(options._profilesName, "spans.log");
    EXPECT_TRUE(options._processInNames);
    EXPECT_EQ(options._lineForm, Options::LineForm::Utc);
    EXPECT_TRUE(options._rawText);
    EXPECT_EQ(options._rotateSize, 64U * 1024 * 1024);
    EXPECT_EQ(options._rotateMinute, 3 * 60 + 7);
    EXPECT_EQ(options._keptFiles, 7);
    EXPECT_TRUE(options._compress);
    EXPECT_TRUE(options._reopenOnHangup);
    EXPECT_EQ(options._entries, 8192U);
    EXPECT_EQ(options._characters, 1024U * 1024);
    EXPECT_EQ(options._memoryLimit, std::uint64_t{3} * 1024 * 1024 * 1024);
    EXPECT_EQ(options._endLimit, 30s);
    EXPECT_TRUE(options._drainOnFatalSignals);
    EXPECT_TRUE(options._sync);
    EXPECT_EQ(options._mappingDirectory, "C:\\Mappings");
    EXPECT_EQ(options._keptMappings, 9);
    EXPECT_EQ(options._keptMappingDays, 365);
    EXPECT_EQ(options._pendingLimit, 128U * 1024);
    EXPECT_TRUE(options._sourceLocation);
    EXPECT_FALSE(options._control);
}

TEST(LgServiceOptions, SettingOneOptionLeavesTheOthers)
{
    for (const Known& row : KNOWN)
    {
        Options options;
        setOrFail(options, row._name, row._text);
        for (const Known& other : KNOWN)
            EXPECT_EQ(shownOf(options, other._name), &other == &row ? other._shown : other._default)
                << row._name << ", " << other._name;
    }
}

struct Taken
{
    const char* _name;
    std::string _text;
    const char* _shown;
};

TEST(LgServiceOptions, TakesEachFormOfAValueAndTheEndsOfItsRange)
{
    const Taken rows[] = {
        {"directory", "", "\"\""},
        {"directory", " ", "\" \""},
        {"directory", "a\nb\x7f\x1b[2J\xc3\xa4", "\"a\\x0ab\\x7f\\x1b[2J\xc3\xa4\""},
        {"mapping-directory", "", "\"\""},
        {"mapping-directory", "Global\\a/b:c", "\"Global\\a/b:c\""},
        {"events-name", "...", "\"...\""},
        {"events-name", "+a %b", "\"+a %b\""},
        {"profiles-name", ".p", "\".p\""},
        {"process-in-names", "true", "true"},
        {"process-in-names", "TRUE", "true"},
        {"process-in-names", "Yes", "true"},
        {"process-in-names", "oN", "true"},
        {"process-in-names", "1", "true"},
        {"raw-text", "false", "false"},
        {"raw-text", "FALSE", "false"},
        {"raw-text", "no", "false"},
        {"raw-text", "OFF", "false"},
        {"raw-text", "0", "false"},
        {"line-form", "ticks", "ticks"},
        {"line-form", "Local", "local"},
        {"line-form", "UTC", "utc"},
        {"rotate-size", "0", "0"},
        {"rotate-size", "0G", "0"},
        {"rotate-size", "1", "1"},
        {"rotate-size", "007", "7"},
        {"rotate-size", "1k", "1024"},
        {"rotate-size", "1K", "1024"},
        {"rotate-size", "3m", "3145728"},
        {"rotate-size", "2g", "2147483648"},
        {"rotate-size", "1024G", "1099511627776"},
        {"rotate-size", "1048576M", "1099511627776"},
        {"rotate-size", "1099511627776", "1099511627776"},
        {"rotate-time", "00:00", "00:00"},
        {"rotate-time", "09:59", "09:59"},
        {"rotate-time", "23:59", "23:59"},
        {"rotate-time", "None", "none"},
        {"kept-files", "1", "1"},
        {"kept-files", "1000", "1000"},
        {"entries", "64", "64"},
        {"entries", "65", "128"},
        {"entries", "4097", "8192"},
        {"entries", "524289", "1048576"},
        {"entries", "1048576", "1048576"},
        {"characters", "65536", "65536"},
        {"characters", "65537", "131072"},
        {"characters", "64K", "65536"},
        {"characters", "33M", "67108864"},
        {"characters", "64M", "67108864"},
        {"memory-limit", "1M", "1048576"},
        {"memory-limit", "1048577", "1048577"},
        {"memory-limit", "1024G", "1099511627776"},
        {"wait-levels", "none", "none"},
        {"wait-levels", "NONE", "none"},
        {"wait-levels", "Profiling", "Profiling"},
        {"wait-levels", "Error,Error", "Error"},
        {"wait-levels", "tracing,fatalerror,Internal Error", "Internal Error,Fatal Error,Tracing"},
        {"flush-level", "None", "none"},
        {"flush-level", "internal error", "Internal Error"},
        {"flush-level", "FatalError", "Fatal Error"},
        {"flush-level", "Profiling", "Profiling"},
        {"wait-limit", "0", "0ms"},
        {"wait-limit", "3600s", "3600000ms"},
        {"end-limit", "0s", "0ms"},
        {"end-limit", "1ms", "1ms"},
        {"end-limit", "2MS", "2ms"},
        {"end-limit", "3600000", "3600000ms"},
        {"end-limit", "3600s", "3600000ms"},
        {"end-limit", "0", "0ms"},
        {"end-limit", "1S", "1000ms"},
        {"end-limit", "3600000ms", "3600000ms"},
        {"kept-mappings", "1", "1"},
        {"kept-mappings", "10000", "10000"},
        {"kept-mapping-days", "1", "1"},
        {"kept-mapping-days", "3650", "3650"},
        {"pending-limit", "65536", "65536"},
        {"pending-limit", "1G", "1073741824"},
    };
    for (const Taken& row : rows)
        for (Options options : {Options(), changedOptions()})
        {
            setOrFail(options, row._name, row._text);
            EXPECT_EQ(shownOf(options, row._name), row._shown) << row._name << ": " << row._text;
        }
}

struct Refused
{
    const char* _name;
    Texts _texts;
    const char* _problem;
};

TEST(LgServiceOptions, RefusesWhatIsMalformedOrOutOfRangeAndLeavesTheValue)
{
    using namespace std::string_literals;
    const Texts notNumbers = {"",      " ",    "x",   "1 ",   " 1",  "+1",  "1.5",
                              "1,000", "0x10", "1e3", "1\0"s, "\0"s, "one", "--1"};
    const Texts notSizes = {"",    " ",   "K",    "64Q",  "64KB", "64 M", "64MM",    "-",
                            "+1K", "1.5", "0x10", "1,5M", "1\0"s, "M64",  "\xc2\xb2"};
    const Texts notSpans = {"", "s", "ms", "5h", "5 s", "1.5s", "5sm", "5mss", "+5", "s5", "1\0"s};
    const Texts notTruths = {"", " ", "2", "-1", "maybe", "tru", "truee", "1 ", "01", "y", "\0"s};
    const Texts notNames = {"", ".", "..", "a/b", "/a", "a/", "a\\b", "c:a", "a:", "a\0b"s};
    const Texts notTimes = {"",      "3:07",  "0307",  "03.07", "03:7",  "03:070",    " 03:07",
                            "-1:00", "00:-1", "ab:cd", "24",    "03:0x", "\0\0:\0\0"s};
    const Refused rows[] = {
        {"directory", {"a\0"s, "\0"s}, "is not a text"},
        {"mapping-directory", {"a\0b"s, "\0a"s}, "is not a text"},
        {"events-name", notNames, "is not the name of a file"},
        {"profiles-name", notNames, "is not the name of a file"},
        {"process-in-names", notTruths, "is not a truth value"},
        {"raw-text", notTruths, "is not a truth value"},
        {"compress", notTruths, "is not a truth value"},
        {"reopen-on-hangup", notTruths, "is not a truth value"},
        {"drain-on-fatal-signals", notTruths, "is not a truth value"},
        {"sync", notTruths, "is not a truth value"},
        {"line-form", {"", "tick", "gmt", "utc ", "0", "none"}, "is not a form of lines"},
        {"rotate-size", notSizes, "is not a size"},
        {"rotate-size",
         {"-1", "-1K", "1025G", "1099511627777", "1048577M", "9223372036854775807",
          "9223372036854775808", "9223372036854775807G", "18446744073709551616", "17179869184G",
          "-9223372036854775809"},
         "is out of range"},
        {"rotate-time", notTimes, "is not a time of day"},
        {"rotate-time", {"24:00", "23:60", "99:99"}, "is out of range"},
        {"kept-files", notNumbers, "is not a whole number"},
        {"kept-files",
         {"0", "-1", "1001", "4294967297", "99999999999999999999"},
         "is out of range"},
        {"entries", notNumbers, "is not a whole number"},
        {"entries", {"4K"}, "is not a whole number"},
        {"entries", {"0", "63", "1048577", "4294967360"}, "is out of range"},
        {"characters", notSizes, "is not a size"},
        {"characters", {"0", "65535", "63K", "67108865", "65M", "4G"}, "is out of range"},
        {"memory-limit", notSizes, "is not a size"},
        {"memory-limit", {"0", "1048575", "1023K", "1025G", "1099511627777"}, "is out of range"},
        {"wait-levels",
         {"", " ", "3", "Error,", ",Error", "Error,,Warning", "none,Error", "Error,none", "Errors",
          "Error Warning", "Error;Warning", "all", "Error\0"s},
         "is not a list of levels"},
        {"flush-level", {"", "0", "-1", "Warn", "Error,Warning", "Warning\0"s}, "is not a level"},
        {"wait-limit", notSpans, "is not a time span"},
        {"wait-limit", {"-1", "3600001", "3601s"}, "is out of range"},
        {"end-limit", notSpans, "is not a time span"},
        {"end-limit",
         {"-1", "-1s", "3600001", "3600001ms", "3601s", "9223372036854775807s"},
         "is out of range"},
        {"kept-mappings", notNumbers, "is not a whole number"},
        {"kept-mappings", {"0", "-1", "10001"}, "is out of range"},
        {"kept-mapping-days", notNumbers, "is not a whole number"},
        {"kept-mapping-days", {"0", "-30", "3651"}, "is out of range"},
        {"pending-limit", notSizes, "is not a size"},
        {"pending-limit", {"0", "65535", "1073741825", "2G"}, "is out of range"},
        {"source-location", notTruths, "is not a truth value"},
        {"control", notTruths, "is not a truth value"},
    };
    std::map<std::string, int> tested;
    for (const Refused& row : rows)
    {
        ++tested[row._name];
        for (const std::string& text : row._texts)
        {
            Options options = changedOptions();
            const std::string before = displayed(options);
            std::string error;
            EXPECT_FALSE(options.set(row._name, text, error)) << row._name << ": " << text;
            EXPECT_EQ(displayed(options), before);
            std::string shown;
            for (const char character : text)
                shown += character == '\0' ? "\\x00" : std::string(1, character);
            EXPECT_EQ(error,
                      row._name + (": \"" + shown + "\" ") + row._problem + expectedBy(row._name));
        }
    }
    EXPECT_EQ(tested.size(), std::size(KNOWN));
}

TEST(LgServiceOptions, AnUnknownNameIsReportedWithTheNearestOneIfOneIsNear)
{
    const std::map<std::string, std::string> rows = {
        {"rotat-size", "; the nearest is rotate-size"},
        {"rotatesize", "; the nearest is rotate-size"},
        {"rotate_size", "; the nearest is rotate-size"},
        {"Rotate-Size", "; the nearest is rotate-size"},
        {"rotate-sizes", "; the nearest is rotate-size"},
        {"kept-mapping", "; the nearest is kept-mappings"},
        {"kept-mapping-das", "; the nearest is kept-mapping-days"},
        {"xyzectory", "; the nearest is directory"},
        {"wxyzctory", ""},
        {"directoryxyz", "; the nearest is directory"},
        {"xyzdirectory", "; the nearest is directory"},
        {"directorywxyz", ""},
        {"ectory", "; the nearest is directory"},
        {"direct", "; the nearest is directory"},
        {"", ""},
        {"colour", ""},
        {std::string(100000, 'a'), ""},
    };
    for (const auto& [name, nearest] : rows)
    {
        Options options;
        std::string error;
        EXPECT_FALSE(options.set(name, "1", error));
        EXPECT_EQ(error, name + ": there is no such option" + nearest);
        EXPECT_EQ(displayed(options), displayed(Options()));
    }
    Options options;
    std::string error;
    EXPECT_FALSE(options.set("a\x1b\n", "1", error));
    EXPECT_EQ(error, "a\\x1b\\x0a: there is no such option");
}

TEST(LgServiceOptions, TheTextAndTheErrorMayBeOneObject)
{
    Options options;
    std::string text = "64Q";
    EXPECT_FALSE(options.set("rotate-size", text, text));
    EXPECT_EQ(text, "rotate-size: \"64Q\" is not a size" + expectedBy("rotate-size"));
    setOrFail(options, "directory", "/var/log");
    setOrFail(options, "directory", std::string_view(options._directory).substr(4));
    EXPECT_EQ(options._directory, "/log");
}

TEST(LgServiceOptions, DisplaysEveryOptionInTheOrderOfTheStruct)
{
    EXPECT_EQ(displayed(Options()), "directory: \"\" (ZU_LOG_SERVICE_DIRECTORY)\n"
                                    "events-name: \"events.log\" (ZU_LOG_SERVICE_EVENTS_NAME)\n"
                                    "profiles-name: \"prof.log\" (ZU_LOG_SERVICE_PROFILES_NAME)\n"
                                    "process-in-names: false (ZU_LOG_SERVICE_PROCESS_IN_NAMES)\n"
                                    "line-form: ticks (ZU_LOG_SERVICE_LINE_FORM)\n"
                                    "raw-text: false (ZU_LOG_SERVICE_RAW_TEXT)\n"
                                    "source-location: false (ZU_LOG_SERVICE_SOURCE_LOCATION)\n"
                                    "rotate-size: 0 (ZU_LOG_SERVICE_ROTATE_SIZE)\n"
                                    "rotate-time: none (ZU_LOG_SERVICE_ROTATE_TIME)\n"
                                    "kept-files: 10 (ZU_LOG_SERVICE_KEPT_FILES)\n"
                                    "compress: false (ZU_LOG_SERVICE_COMPRESS)\n"
                                    "reopen-on-hangup: false (ZU_LOG_SERVICE_REOPEN_ON_HANGUP)\n"
                                    "entries: 4096 (ZU_LOG_SERVICE_ENTRIES)\n"
                                    "characters: 262144 (ZU_LOG_SERVICE_CHARACTERS)\n"
                                    "memory-limit: 268435456 (ZU_LOG_SERVICE_MEMORY_LIMIT)\n"
                                    "wait-levels: none (ZU_LOG_SERVICE_WAIT_LEVELS)\n"
                                    "flush-level: none (ZU_LOG_SERVICE_FLUSH_LEVEL)\n"
                                    "wait-limit: 1000ms (ZU_LOG_SERVICE_WAIT_LIMIT)\n"
                                    "end-limit: 5000ms (ZU_LOG_SERVICE_END_LIMIT)\n"
                                    "drain-on-fatal-signals: false "
                                    "(ZU_LOG_SERVICE_DRAIN_ON_FATAL_SIGNALS)\n"
                                    "sync: false (ZU_LOG_SERVICE_SYNC)\n"
                                    "mapping-directory: \"\" (ZU_LOG_SERVICE_MAPPING_DIRECTORY)\n"
                                    "kept-mappings: 100 (ZU_LOG_SERVICE_KEPT_MAPPINGS)\n"
                                    "kept-mapping-days: 30 (ZU_LOG_SERVICE_KEPT_MAPPING_DAYS)\n"
                                    "pending-limit: 1048576 (ZU_LOG_SERVICE_PENDING_LIMIT)\n"
                                    "control: true (ZU_LOG_SERVICE_CONTROL)\n");
    std::string changed;
    for (const Known& row : KNOWN)
        changed += std::string(row._name) + ": " + row._shown + " (" + row._variable + ")\n";
    EXPECT_EQ(displayed(changedOptions()), changed);
}

TEST(LgServiceOptions, TakesWhatItDisplays)
{
    for (const Options& options : {Options(), changedOptions()})
    {
        Options copy = changedOptions();
        for (const Known& row : KNOWN)
            setOrFail(copy, row._name, withoutQuotes(shownOf(options, row._name)));
        EXPECT_EQ(displayed(copy), displayed(options));
    }
}

TEST(LgServiceOptions, NeitherLocalesNorFormatsChangeATextOrAValue)
{
    Options refused;
    const std::string report = readInto(refused, {"ZU_LOG_SERVICE_ENTRIES=1,5"});
    const std::string plain = displayed(changedOptions());
    const support::CommaStreams streams;
    const support::CommaNumerals numerals;
    std::ostringstream os;
    os << std::setw(80) << std::setfill('*') << std::hex << std::showbase << std::boolalpha;
    changedOptions().display(os);
    EXPECT_EQ(os.str(), plain);
    EXPECT_EQ(readInto(refused, {"ZU_LOG_SERVICE_ENTRIES=1,5"}), report);
    EXPECT_EQ(report, "ZU_LOG_SERVICE_ENTRIES: \"1,5\" is not a whole number" +
                          expectedBy("entries") + "\n");
}

TEST(LgServiceOptions, EachVariableReplacesTheValueOfTheProgram)
{
    for (const Known& row : KNOWN)
        for (Options options : {Options(), changedOptions()})
        {
            const bool isToDefault = shownOf(options, row._name) == row._shown;
            const std::string text = isToDefault ? withoutQuotes(row._default) : row._text;
            EXPECT_EQ(readInto(options, {row._variable + ("=" + text)}), "");
            EXPECT_EQ(shownOf(options, row._name), isToDefault ? row._default : row._shown);
        }
    Texts all;
    for (const Known& row : KNOWN) all.push_back(row._variable + ("=" + std::string(row._text)));
    Options options;
    EXPECT_EQ(readInto(options, all), "");
    EXPECT_EQ(displayed(options), displayed(changedOptions()));
}

TEST(LgServiceOptions, WithoutVariablesTheProgramsValuesStay)
{
    Options options = changedOptions();
    std::ostringstream messages;
    options.readEnvironment(nullptr, messages);
    EXPECT_EQ(messages.str(), "");
    EXPECT_EQ(readInto(options, {"HOME=/home/me", "ZU_LOG_WARNING=a", "=C:=C:\\", "=", "",
                                 "ZU_LOG_SERVIC=1", "ZU_LOG_SERVICE=1", "ZU_LOG_SERVICE_ENTRIES",
                                 "XZU_LOG_SERVICE_ENTRIES=64"}),
              "");
    EXPECT_EQ(displayed(options), displayed(changedOptions()));
}

TEST(LgServiceOptions, AVariableThatCannotBeUsedIsOneLineAndTheOthersCount)
{
    Options options;
    options._keptFiles = 77;
    EXPECT_EQ(
        readInto(options, {"ZU_LOG_SERVICE_KEPT_FILES=0", "ZU_LOG_SERVICE_ROTATE_SIZE=64Q",
                           "ZU_LOG_SERVICE_ENTRIES=128", "ZU_LOG_SERVICE_DIRECTORY=/a=b"}),
        "ZU_LOG_SERVICE_ROTATE_SIZE: \"64Q\" is not a size: expected a number of bytes from 0 "
        "to 1024G, with K, M or G behind it if wanted, e.g. 64M\n"
        "ZU_LOG_SERVICE_KEPT_FILES: \"0\" is out of range: expected a whole number from 1 to "
        "1000\n");
    EXPECT_EQ(options._keptFiles, 77);
    EXPECT_EQ(options._rotateSize, 0U);
    EXPECT_EQ(options._entries, 128U);
    EXPECT_EQ(options._directory, "/a=b");
}

TEST(LgServiceOptions, AValueThatIsReportedForgesNoLine)
{
    Options options;
    EXPECT_EQ(readInto(options, {"ZU_LOG_SERVICE_KEPT_FILES=1\r\n\x1b[2Jroot"}),
              "ZU_LOG_SERVICE_KEPT_FILES: \"1\\x0d\\x0a\\x1b[2Jroot\" is not a whole number" +
                  expectedBy("kept-files") + "\n");
}

TEST(LgServiceOptions, AnEmptyVariableIsAnEmptyTextOrCannotBeUsed)
{
    for (const Known& row : KNOWN)
    {
        Options options = changedOptions();
        const std::string messages = readInto(options, {std::string(row._variable) + "="});
        const bool isAnyText = row._expected == ANY_TEXT;
        EXPECT_EQ(shownOf(options, row._name), isAnyText ? "\"\"" : row._shown);
        const std::string head = std::string(row._variable) + ": \"\" is not ";
        EXPECT_EQ(messages.substr(0, head.size()), isAnyText ? "" : head);
    }
}

TEST(LgServiceOptions, TheFirstEntryOfANameCounts)
{
    Options options;
    EXPECT_EQ(readInto(options,
                       {"ZU_LOG_SERVICE_MAPPING_DIRECTORY=a", "ZU_LOG_SERVICE_MAPPING_DIRECTORY=b",
                        "ZU_LOG_SERVICE_KEPT_FILES=5", "ZU_LOG_SERVICE_KEPT_FILES=0"}),
              "");
    EXPECT_EQ(options._mappingDirectory, "a");
    EXPECT_EQ(options._keptFiles, 5);
}

TEST(LgServiceOptions, AVariableThatIsNotKnownIsReported)
{
    Options options;
    EXPECT_EQ(readInto(options, {"ZU_LOG_SERVICE_ROTATESIZE=1M", "zu_log_service_entries=64",
                                 "ZU_LOG_SERVICE_COLOUR=red", "ZU_LOG_SERVICE_=1",
                                 "ZU_LOG_SERVICE_MAPPING-DIRECTORY=a", "ZU_LOG_SERVICE_A\nB=1"}),
              "ZU_LOG_SERVICE_ROTATESIZE: there is no such variable; the nearest is "
              "ZU_LOG_SERVICE_ROTATE_SIZE\n"
              "zu_log_service_entries: there is no such variable; the nearest is "
              "ZU_LOG_SERVICE_ENTRIES\n"
              "ZU_LOG_SERVICE_COLOUR: there is no such variable\n"
              "ZU_LOG_SERVICE_: there is no such variable\n"
              "ZU_LOG_SERVICE_MAPPING-DIRECTORY: there is no such variable; the nearest is "
              "ZU_LOG_SERVICE_MAPPING_DIRECTORY\n"
              "ZU_LOG_SERVICE_A\\x0aB: there is no such variable\n");
    EXPECT_EQ(displayed(options), displayed(Options()));
}

TEST(LgServiceOptions, ReadsTheEnvironmentOfTheProcess)
{
    const support::VariableGuard entries("ZU_LOG_SERVICE_ENTRIES");
    const support::VariableGuard files("ZU_LOG_SERVICE_KEPT_FILES");
    const support::VariableGuard directory("ZU_LOG_SERVICE_DIRECTORY");
    entries.set("256");
    files.set("none");
    directory.set("");
    const support::StreamCapture messages(std::cerr);
    const Options fresh = Options::fromEnvironment();
    EXPECT_EQ(fresh._entries, 256U);
    EXPECT_EQ(fresh._keptFiles, 10);
    EXPECT_EQ(fresh._directory, "");
    Options options;
    options._keptFiles = 3;
    options._directory = "/var/log";
    options.readEnvironment();
    EXPECT_EQ(options._entries, 256U);
    EXPECT_EQ(options._keptFiles, 3);
    EXPECT_EQ(options._directory, "/var/log");
    const std::string line = "ZU_LOG_SERVICE_KEPT_FILES: \"none\" is not a whole number" +
                             expectedBy("kept-files") + "\n";
    EXPECT_EQ(messages.text(), line + line);
}

TEST(LgServiceOptions, CheckLeavesWhatCanBeUsed)
{
    for (const Options& before : {Options(), changedOptions()})
    {
        Options options = before;
        std::ostringstream messages;
        options.check(messages);
        EXPECT_EQ(messages.str(), "");
        EXPECT_EQ(displayed(options), displayed(before));
    }
}

TEST(LgServiceOptions, CheckRoundsUpToPowersOfTwo)
{
    Options options;
    options._entries = 65;
    options._characters = 65537;
    std::ostringstream messages;
    options.check(messages);
    EXPECT_EQ(messages.str(), "");
    EXPECT_EQ(options._entries, 128U);
    EXPECT_EQ(options._characters, 131072U);
}

struct Assigned
{
    const char* _name;
    void (*_assign)(Options&);
    const char* _report;
};

TEST(LgServiceOptions, CheckPutsTheDefaultInThePlaceOfWhatCannotBeUsed)
{
    constexpr std::uint64_t HUGE_SIZE = ~std::uint64_t{0};
    const Assigned rows[] = {
        {"directory", [](Options& o) { o._directory = std::string(1, '\0'); },
         "\"\\x00\" is not a text"},
        {"events-name", [](Options& o) { o._eventsName = ""; }, "\"\" is not the name of a file"},
        {"profiles-name", [](Options& o) { o._profilesName = "a/b"; },
         "\"a/b\" is not the name of a file"},
        {"line-form", [](Options& o) { o._lineForm = static_cast<Options::LineForm>(3); },
         "\"3\" is not a form of lines"},
        {"line-form", [](Options& o) { o._lineForm = static_cast<Options::LineForm>(-1); },
         "\"-1\" is not a form of lines"},
        {"rotate-size", [](Options& o) { o._rotateSize = HUGE_SIZE; },
         "\"18446744073709551615\" is out of range"},
        {"rotate-time", [](Options& o) { o._rotateMinute = 1440; },
         "\"1440\" is not a time of day"},
        {"rotate-time", [](Options& o) { o._rotateMinute = -2; }, "\"-2\" is not a time of day"},
        {"kept-files", [](Options& o) { o._keptFiles = -5; }, "\"-5\" is out of range"},
        {"entries", [](Options& o) { o._entries = 63; }, "\"63\" is out of range"},
        {"entries", [](Options& o) { o._entries = 4294967295; }, "\"4294967295\" is out of range"},
        {"characters", [](Options& o) { o._characters = 0; }, "\"0\" is out of range"},
        {"memory-limit", [](Options& o) { o._memoryLimit = 0; }, "\"0\" is out of range"},
        {"end-limit", [](Options& o) { o._endLimit = -1ms; }, "\"-1ms\" is out of range"},
        {"end-limit", [](Options& o) { o._endLimit = 2h; }, "\"7200000ms\" is out of range"},
        {"end-limit", [](Options& o) { o._endLimit = std::chrono::milliseconds::max(); },
         "\"9223372036854775807ms\" is out of range"},
        {"mapping-directory", [](Options& o) { o._mappingDirectory = std::string(1, '\0'); },
         "\"\\x00\" is not a text"},
        {"kept-mappings", [](Options& o) { o._keptMappings = 0; }, "\"0\" is out of range"},
        {"kept-mapping-days", [](Options& o) { o._keptMappingDays = 3651; },
         "\"3651\" is out of range"},
        {"pending-limit", [](Options& o) { o._pendingLimit = HUGE_SIZE; },
         "\"18446744073709551615\" is out of range"},
    };
    for (const Assigned& row : rows)
    {
        Options options = changedOptions();
        row._assign(options);
        std::ostringstream messages;
        options.check(messages);
        EXPECT_EQ(messages.str(),
                  std::string(row._name) + ": " + row._report + expectedBy(row._name) + "\n");
        for (const Known& other : KNOWN)
            EXPECT_EQ(shownOf(options, other._name),
                      std::string(other._name) == row._name ? other._default : other._shown)
                << row._name << ", " << other._name;
    }
}

TEST(LgServiceOptions, CheckKeepsTheNamesOfTheTwoFilesApart)
{
    for (const auto& [events, profiles] :
         {std::pair("one.log", "one.log"), std::pair("One.log", "oNE.log"),
          std::pair("prof.log", "prof.log"), std::pair("", "events.log")})
    {
        Options options;
        options._eventsName = events;
        options._profilesName = profiles;
        std::ostringstream messages;
        options.check(messages);
        const Texts lines = linesOf(messages.str());
        ASSERT_FALSE(lines.empty());
        EXPECT_EQ(lines.back(), "profiles-name: \"" + std::string(profiles) +
                                    "\" is the events-name, too: expected another name");
        EXPECT_EQ(options._eventsName, "events.log");
        EXPECT_EQ(options._profilesName, "prof.log");
    }
    Options options;
    options._eventsName = "prof.log";
    options._profilesName = "events.log";
    std::ostringstream messages;
    options.check(messages);
    EXPECT_EQ(messages.str(), "");
}

// The cells of the rows about options in the tables of the page.
std::vector<Texts> rowsOfThePage()
{
    std::ifstream file(ZU_TEST_DOCS_DIR "/log-service.md", std::ios::binary);
    std::vector<Texts> rows;
    for (std::string line; std::getline(file, line);)
    {
        if (line.compare(0, 3, "| `") != 0) continue;
        Texts cells;
        std::size_t begin = 2;
        for (std::size_t end = 0; (end = line.find(" |", begin)) != std::string::npos;
             begin = end + 3)
            cells.push_back(line.substr(begin, end - begin));
        rows.push_back(cells);
    }
    return rows;
}

// What stands between backquotes, or nothing for the word "empty".
std::string textOfCell(const std::string& cell)
{
    if (cell == "empty") return "";
    const bool isQuoted = cell.size() > 2 && cell.front() == '`' && cell.back() == '`';
    return isQuoted ? cell.substr(1, cell.size() - 2) : "not quoted: " + cell;
}

TEST(LgServiceOptions, ThePageListsEveryOptionWithItsVariableWhatItTakesAndItsDefault)
{
    const std::vector<Texts> rows = rowsOfThePage();
    ASSERT_EQ(rows.size(), std::size(KNOWN));
    for (std::size_t i = 0; i < rows.size(); ++i)
    {
        const Known& option = KNOWN[i];
        const Texts& cells = rows[i];
        ASSERT_EQ(cells.size(), 5U) << option._name;
        EXPECT_EQ(textOfCell(cells[0]), option._name);
        EXPECT_EQ(textOfCell(cells[1]), option._variable);
        EXPECT_EQ(cells[2], option._expected);
        Options options = changedOptions();
        setOrFail(options, option._name, textOfCell(cells[3]));
        EXPECT_EQ(shownOf(options, option._name), option._default) << option._name;
        EXPECT_FALSE(cells[4].empty());
    }
}

TEST(LgServiceOptions, ThePageShowsReportsAsTheyAre)
{
    std::ifstream file(ZU_TEST_DOCS_DIR "/log-service.md", std::ios::binary);
    const std::string page{std::istreambuf_iterator<char>(file), {}};
    Options options;
    const std::string reports =
        readInto(options, {"ZU_LOG_SERVICE_KEPT_FILES=0"}) +
        readInto(options, {"ZU_LOG_SERVICE_RAW_TEXT=maybe", "ZU_LOG_SERVICE_ROTATESIZE=1"});
    EXPECT_NE(page.find("\n```\n" + reports + "```\n"), std::string::npos) << reports;
    EXPECT_EQ(readInto(options, {"ZU_LOG_SERVICE_ROTATE_SIZE=256M"}), "");
    const std::string line = linesOf(displayed(options))[7];
    EXPECT_NE(page.find("\n```\n" + line + "\n```\n"), std::string::npos) << line;
}

} // namespace
