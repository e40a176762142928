#include "app/lgServiceHealth.h"

#include "support/commaLocale.h"

#include <chrono>
#include <gtest/gtest.h>
#include <string>

namespace
{

using Zu::LgServiceHealth;
namespace LgTypes = Zu::LgTypes;

TEST(LgServiceHealth, NothingIsAnObjectOfZeros)
{
    EXPECT_EQ(LgServiceHealth().toJson(),
              R"({"events":{"Internal Error":0,"Fatal Error":0,"Error":0,"Warning":0,)"
              R"("Informational":0,"Tracing":0,"Profiling":0},"lost":0,"unwritten":0,)"
              R"("waiting":0,"behindMicroseconds":0,"recovered":0,"queues":[],"files":[],)"
              R"("perSecond":{"statements":0,"written":0,"leftOut":0},)"
              R"("everyNth":{"statements":0,"written":0,"leftOut":0},"limits":[]})");
}

LgServiceHealth fullHealth()
{
    LgServiceHealth health;
    for (std::size_t i = 0; i < health._events.size(); ++i) health._events[i] = 1000 + i;
    health._lost = 18446744073709551615U;
    health._unwritten = 1;
    health._waiting = 2;
    health._behind = std::chrono::seconds(3);
    health._recovered = 4000;
    health._queues = {{4711, 4096, 1, 9, 5}, {4294967295U, 64, 2, 62, 0}};
    health._files = {{"/var/log/shop/events.log", true, 1048576, 3}, {"prof.log", false, 0, 0}};
    health._perSecond = {2, 17, 12};
    health._everyNth = {3, 18446744073709551615U, 9};
    health._limits = {
        {"C:\\a \"b\".cpp", 17, "Orders", Zu::LgTypes::InternalError, true, 5, 16, 12, 4},
        {"b.cpp", 2, "", Zu::LgTypes::Tracing, false, 4294967295U, 1, 9, 9}};
    return health;
}

constexpr const char* FULL_TEXT =
    R"({"events":{"Internal Error":1000,"Fatal Error":1001,"Error":1002,"Warning":1003,)"
    R"("Informational":1004,"Tracing":1005,"Profiling":1006},"lost":18446744073709551615,)"
    R"("unwritten":1,"waiting":2,"behindMicroseconds":3000000,"recovered":4000,"queues":[)"
    R"({"thread":4711,"entries":4096,"waiting":1,"largest":9,"lost":5},)"
    R"({"thread":4294967295,"entries":64,"waiting":2,"largest":62,"lost":0}],"files":[)"
    R"({"path":"/var/log/shop/events.log","failing":true,"pending":1048576,"rotations":3},)"
    R"({"path":"prof.log","failing":false,"pending":0,"rotations":0}],)"
    R"("perSecond":{"statements":2,"written":17,"leftOut":12},)"
    R"("everyNth":{"statements":3,"written":18446744073709551615,"leftOut":9},"limits":[)"
    R"({"file":"C:\\a \"b\".cpp","line":17,"group":"Orders","level":"Internal Error",)"
    R"("perSecond":true,"number":5,"written":16,"leftOut":12,"owed":4},)"
    R"({"file":"b.cpp","line":2,"group":"","level":"Tracing",)"
    R"("perSecond":false,"number":4294967295,"written":1,"leftOut":9,"owed":9}]})";

TEST(LgServiceHealth, AllOfItIsOneObjectInOneLine)
{
    EXPECT_EQ(fullHealth().toJson(), FULL_TEXT);
}

TEST(LgServiceHealth, DependsOnNoLocale)
{
    const support::CommaStreams streams;
    const support::CommaNumerals numerals;
    EXPECT_EQ(fullHealth().toJson(), FULL_TEXT);
}

struct Path
{
    const char* _path;
    const char* _json;
};

TEST(LgServiceHealth, PathsAreWhatJsonTakes)
{
    const Path rows[] = {
        {"", R"("")"},
        {"a \"b\"", R"("a \"b\"")"},
        {"C:\\logs\\y.log", R"("C:\\logs\\y.log")"},
        {"\na\tb\n\x1f", R"("\u000aa\u0009b\u000a\u001f")"},
        {"\x7f", R"("\\x7f")"},
        {"\xc3\xa4\xe2\x82\xac", "\"\xc3\xa4\xe2\x82\xac\""},
        {"\xff\xc3", R"("\\xff\\xc3")"},
    };
    for (const Path& row : rows)
    {
        LgServiceHealth health;
        health._files.resize(1);
        health._files.front()._path = row._path;
        const std::string json = health.toJson();
        const std::string begin = "\"files\":[{\"path\":";
        const std::size_t place = json.find(begin) + begin.size();
        EXPECT_EQ(json.substr(place, json.find(",\"failing\"") - place), row._json);
    }
}

} // namespace
