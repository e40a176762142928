#include "base/envVar.h"

#include "base/exInternalError.h"
#include "base/osEnv.h"

#include "support/variableGuard.h"

#include <algorithm>
#include <cstddef>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <ostream>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

namespace
{

using support::VariableGuard;
using Zu::EnvDoubleVar;
using Zu::EnvIntVar;
using Zu::EnvVar;
using Zu::EnvVarRegistry;
using Zu::OsEnv;

static_assert(std::is_same_v<EnvVarRegistry, Zu::List<EnvVar*>>);
static_assert(std::has_virtual_destructor_v<EnvVar>);
static_assert(std::is_base_of_v<EnvVar, EnvIntVar> && std::is_base_of_v<EnvVar, EnvDoubleVar>);

// Made before main(), as programs do it.
EnvVar atStart("ZU_TEST_ENV_AT_START", "from the start");

constexpr const char* NAME = "ZU_TEST_ENV";

// How often the object is in the registry; others may be there too.
std::ptrdiff_t entriesOf(const EnvVar& variable)
{
    const EnvVarRegistry& registry = EnvVar::getRegistry();
    return std::count(registry.begin(), registry.end(), &variable);
}

// What the registry lists behind its first `count` entries.
std::vector<const EnvVar*> listedBehind(std::size_t count)
{
    std::vector<const EnvVar*> all(EnvVar::getRegistry().begin(), EnvVar::getRegistry().end());
    all.erase(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(count));
    return all;
}

std::string dumpOf(const EnvVar& variable)
{
    std::ostringstream out;
    variable.dump(out);
    return out.str();
}

template <class T> std::string printed(const T& value)
{
    std::ostringstream out;
    out << value;
    return out.str();
}

// The variable is unset when a test begins, and as it was when it ends.
class EnvVarTest : public testing::Test
{
protected:
    EnvVarTest()
    {
        _guard.set("");
    }

    VariableGuard _guard = VariableGuard(NAME);
};

TEST_F(EnvVarTest, TheValueIsTheEnvironmentsTextIfThereIsOne)
{
    _guard.set("some text");
    const EnvVar variable(NAME, "default");
    EXPECT_STREQ(variable.getValue(), "some text");
    EXPECT_EQ(variable.getValue(), OsEnv::getVariable(NAME));
}

TEST_F(EnvVarTest, TheValueOfAnUnsetVariableIsTheDefault)
{
    const char text[] = "default";
    EXPECT_EQ(EnvVar(NAME, text).getValue(), text);
    EXPECT_EQ(EnvVar(NAME, nullptr).getValue(), nullptr);
}

TEST_F(EnvVarTest, TheNameIsNotCopied)
{
    const char name[] = "ZU_TEST_ENV_OWN";
    EXPECT_EQ(EnvVar(name, nullptr).getName(), name);
    EXPECT_EQ(EnvIntVar(name, 1).getName(), name);
    EXPECT_EQ(EnvDoubleVar(name, 1).getName(), name);
}

TEST_F(EnvVarTest, AChangeShowsAfterRefreshOnly)
{
    EnvVar variable(NAME, "default");
    EnvIntVar number(NAME, 7);
    EnvDoubleVar real(NAME, 0.5);
    EnvVar::putEnv("ZU_TEST_ENV=42");
    EXPECT_STREQ(variable.getValue(), "default");
    EXPECT_EQ(number.getValue(), 7);
    EXPECT_EQ(real.getValue(), 0.5);
    variable.refresh();
    number.refresh();
    EXPECT_STREQ(variable.getValue(), "42");
    EXPECT_EQ(number.getValue(), 42);
    EXPECT_EQ(real.getValue(), 0.5);
    real.refresh();
    EXPECT_EQ(real.getValue(), 42.0);

    EnvVar::putEnv("ZU_TEST_ENV=43");
    EXPECT_EQ(number.getValue(), 42);
    EXPECT_EQ(real.getValue(), 42.0);
    variable.refresh();
    EXPECT_STREQ(variable.getValue(), "43");
    number.refresh();
    EXPECT_EQ(number.getValue(), 43);
}

TEST_F(EnvVarTest, WhatIsRemovedGivesTheDefaultAgain)
{
    _guard.set("42");
    EnvVar variable(NAME, "default");
    EnvIntVar number(NAME, 7);
    EnvDoubleVar real(NAME, 0.5);
    EnvVar::putEnv("ZU_TEST_ENV=");
    EXPECT_EQ(number.getValue(), 42);
    EXPECT_EQ(real.getValue(), 42.0);
    variable.refresh();
    number.refresh();
    real.refresh();
    EXPECT_STREQ(variable.getValue(), "default");
    EXPECT_EQ(number.getValue(), 7);
    EXPECT_EQ(real.getValue(), 0.5);
}

TEST_F(EnvVarTest, PutEnvPutsTheVariable)
{
    EnvVar::putEnv("ZU_TEST_ENV=a=b");
    EXPECT_STREQ(OsEnv::getVariable(NAME), "a=b");
    EXPECT_THROW(EnvVar::putEnv("no assignment"), Zu::ExInternalError);
}

TEST_F(EnvVarTest, TextToWholeNumbers)
{
    const struct
    {
        const char* _text;
        int _value;
    } cases[] = {
        {"42", 42},        {"-17", -17},
        {"+3", 3},         {" \t12", 12},
        {"12 apples", 12}, {"1.9", 1},
        {"0x10", 0},       {"010", 10},
        {"abc", 0},        {" ", 0},
        {"-", 0},          {"2147483647", std::numeric_limits<int>::max()},
        {"0", 0},          {"-2147483648", std::numeric_limits<int>::min()},
    };
    EnvIntVar refreshed(NAME, 7);
    for (const auto& row : cases)
    {
        _guard.set(row._text);
        EXPECT_EQ(EnvIntVar(NAME, 7).getValue(), row._value) << row._text;
        refreshed.refresh();
        EXPECT_EQ(refreshed.getValue(), row._value) << row._text;
    }
}

TEST_F(EnvVarTest, WholeNumbersOutOfRangeGiveTheNearest)
{
    for (const char* const text : {"2147483648", "99999999999999999999"})
    {
        _guard.set(text);
        EXPECT_EQ(EnvIntVar(NAME, 7).getValue(), std::numeric_limits<int>::max()) << text;
        _guard.set(std::string("-") + text + "0");
        EXPECT_EQ(EnvIntVar(NAME, 7).getValue(), std::numeric_limits<int>::min()) << text;
    }
}

TEST_F(EnvVarTest, TextToNumbers)
{
    const struct
    {
        const char* _text;
        double _value;
    } cases[] = {
        {"42", 42},       {"-1.5", -1.5}, {"+.25", 0.25},   {" \t1e3", 1000}, {"2.5e-1x", 0.25},
        {"1.5 2.5", 1.5}, {"1e", 1},      {"abc", 0},       {" ", 0},         {"-", 0},
        {"0.1", 0.1},     {"1,5", 1},     {"1e300", 1e300},
    };
    EnvDoubleVar refreshed(NAME, 7);
    for (const auto& row : cases)
    {
        _guard.set(row._text);
        EXPECT_EQ(EnvDoubleVar(NAME, 7).getValue(), row._value) << row._text;
        refreshed.refresh();
        EXPECT_EQ(refreshed.getValue(), row._value) << row._text;
    }
}

TEST_F(EnvVarTest, AnUnsetNumberIsItsDefault)
{
    EXPECT_EQ(EnvIntVar(NAME, -7).getValue(), -7);
    EXPECT_EQ(EnvDoubleVar(NAME, 0.1).getValue(), 0.1);
}

TEST_F(EnvVarTest, ANumbersBaseHasTheTextAndNoDefault)
{
    const EnvIntVar number(NAME, 7);
    const EnvDoubleVar real(NAME, 7);
    EXPECT_EQ(static_cast<const EnvVar&>(number).getValue(), nullptr);
    EXPECT_EQ(static_cast<const EnvVar&>(real).getValue(), nullptr);
    _guard.set("42 apples");
    const EnvIntVar setNumber(NAME, 7);
    const EnvDoubleVar setReal(NAME, 7);
    EXPECT_STREQ(static_cast<const EnvVar&>(setNumber).getValue(), "42 apples");
    EXPECT_STREQ(static_cast<const EnvVar&>(setReal).getValue(), "42 apples");
}

TEST_F(EnvVarTest, RefreshIsVirtual)
{
    EnvIntVar number(NAME, 7);
    EnvDoubleVar real(NAME, 7);
    _guard.set("42");
    for (EnvVar* const variable : {static_cast<EnvVar*>(&number), static_cast<EnvVar*>(&real)})
        variable->refresh();
    EXPECT_EQ(number.getValue(), 42);
    EXPECT_EQ(real.getValue(), 42.0);
}

TEST_F(EnvVarTest, ObjectsAreListedInTheOrderOfTheirConstructionWhileTheyLive)
{
    const std::size_t before = EnvVar::getRegistry().size();
    const EnvVar first(NAME, nullptr);
    auto second = std::make_unique<EnvIntVar>(NAME, 1);
    const EnvDoubleVar third("ZU_TEST_ENV_OTHER", 1);
    EXPECT_EQ(listedBehind(before), (std::vector<const EnvVar*>{&first, second.get(), &third}));
    second.reset();
    EXPECT_EQ(listedBehind(before), (std::vector<const EnvVar*>{&first, &third}));
    {
        const EnvVar fourth(NAME, nullptr);
        EXPECT_EQ(listedBehind(before), (std::vector<const EnvVar*>{&first, &third, &fourth}));
    }
    EXPECT_EQ(listedBehind(before), (std::vector<const EnvVar*>{&first, &third}));
}

TEST_F(EnvVarTest, RefreshLeavesTheRegistryAsItIs)
{
    EnvIntVar variable(NAME, 1);
    variable.refresh();
    EXPECT_EQ(entriesOf(variable), 1);
}

TEST_F(EnvVarTest, TheEndThroughTheBaseRemovesTheObject)
{
    const std::size_t before = EnvVar::getRegistry().size();
    std::unique_ptr<EnvVar> variable = std::make_unique<EnvDoubleVar>(NAME, 1);
    EXPECT_EQ(EnvVar::getRegistry().size(), before + 1);
    variable.reset();
    EXPECT_EQ(EnvVar::getRegistry().size(), before);
}

TEST_F(EnvVarTest, TheEndRemovesEveryEntryOfTheObject)
{
    const std::size_t before = EnvVar::getRegistry().size();
    const EnvVar staying(NAME, nullptr);
    {
        EnvVar variable(NAME, nullptr);
        EnvVar::getRegistry().push_front(&variable);
        EnvVar::getRegistry().push_back(&variable);
        EXPECT_EQ(entriesOf(variable), 3);
    }
    EXPECT_EQ(listedBehind(before), (std::vector<const EnvVar*>{&staying}));
}

TEST_F(EnvVarTest, ThereIsOneRegistryBeforeAnythingStarts)
{
    EXPECT_EQ(&EnvVar::getRegistry(), &EnvVar::getRegistry());
    EXPECT_EQ(entriesOf(atStart), 1);
    EXPECT_STREQ(atStart.getValue(), "from the start");
}

TEST_F(EnvVarTest, ACopyIsNotListed)
{
    _guard.set("text");
    const EnvVar original(NAME, "default");
    const std::size_t before = EnvVar::getRegistry().size();
    {
        const EnvVar copy(original);
        EXPECT_EQ(entriesOf(copy), 0);
        EXPECT_EQ(copy.getName(), original.getName());
        EXPECT_EQ(copy.getValue(), original.getValue());
        EXPECT_EQ(dumpOf(copy), dumpOf(original));
        EXPECT_EQ(EnvVar::getRegistry().size(), before);
    }
    EXPECT_EQ(EnvVar::getRegistry().size(), before);
    EXPECT_EQ(entriesOf(original), 1);
}

TEST_F(EnvVarTest, ACopyHasTheDefaultAndReadsForItself)
{
    const EnvVar original(NAME, "default");
    EnvVar copy(original);
    EXPECT_EQ(copy.getValue(), original.getValue());
    _guard.set("text");
    copy.refresh();
    EXPECT_STREQ(copy.getValue(), "text");
    EXPECT_STREQ(original.getValue(), "default");
    EXPECT_EQ(entriesOf(copy), 0);
}

TEST_F(EnvVarTest, CopiesOfNumbersHaveTheNumbersAndAreNotListed)
{
    _guard.set("42");
    const EnvIntVar number(NAME, 7);
    const EnvDoubleVar real(NAME, 0.5);
    EnvIntVar numberCopy(number);
    EnvDoubleVar realCopy(real);
    EXPECT_EQ(entriesOf(numberCopy) + entriesOf(realCopy), 0);
    EXPECT_EQ(numberCopy.getValue(), 42);
    EXPECT_EQ(realCopy.getValue(), 42.0);
    _guard.set("");
    numberCopy.refresh();
    realCopy.refresh();
    EXPECT_EQ(numberCopy.getValue(), 7);
    EXPECT_EQ(realCopy.getValue(), 0.5);
}

TEST_F(EnvVarTest, AnAssignedObjectStaysListedOnce)
{
    const EnvVar source("ZU_TEST_ENV_OTHER", "other default");
    EnvVar target(NAME, "default");
    target = source;
    EXPECT_EQ(target.getName(), source.getName());
    EXPECT_EQ(target.getValue(), source.getValue());
    EXPECT_EQ(entriesOf(target), 1);
    EXPECT_EQ(entriesOf(source), 1);
    EnvVar copy(source);
    copy = target;
    EXPECT_EQ(entriesOf(copy), 0);
}

TEST_F(EnvVarTest, DumpsTexts)
{
    const struct
    {
        const char* _name;
        const char* _text;
        const char* _default;
        const char* _dump;
    } cases[] = {
        {NAME, "", nullptr, R"(name               ZU_TEST_ENV value "NIL" default "NIL")"},
        {NAME, "", "x", R"(name               ZU_TEST_ENV value "NIL" default "x")"},
        {NAME, "some text", "x", R"(name               ZU_TEST_ENV value "some text" default "x")"},
        {NAME, "y", nullptr, R"(name               ZU_TEST_ENV value "y" default "NIL")"},
        {NAME, "y", "", R"(name               ZU_TEST_ENV value "y" default "")"},
        {"ZU_TEST_ENV_OF_25_LETTERS", "", "x",
         R"(name ZU_TEST_ENV_OF_25_LETTERS value "NIL" default "x")"},
        {"ZU_TEST_ENV_OF_MORE_THAN_25_LETTERS", "", "x",
         R"(name ZU_TEST_ENV_OF_MORE_THAN_25_LETTERS value "NIL" default "x")"},
    };
    for (const auto& row : cases)
    {
        _guard.set(row._text);
        const EnvVar variable(row._name, row._default);
        EXPECT_EQ(dumpOf(variable), row._dump);
        EXPECT_EQ(printed(variable), row._dump);
    }
}

TEST_F(EnvVarTest, DumpsNumbers)
{
    EXPECT_EQ(dumpOf(EnvIntVar(NAME, -7)), "name               ZU_TEST_ENV value -7 default -7");
    EXPECT_EQ(dumpOf(EnvDoubleVar(NAME, 0.5)),
              "name               ZU_TEST_ENV value 0.5 default 0.5");
    _guard.set("1234567.5 apples");
    EXPECT_EQ(dumpOf(EnvIntVar(NAME, 7)), "name               ZU_TEST_ENV value 1234567 default 7");
    EXPECT_EQ(dumpOf(EnvDoubleVar(NAME, 1e-10)),
              "name               ZU_TEST_ENV value 1.23457e+06 default 1e-10");
    _guard.set("abc");
    EXPECT_EQ(dumpOf(EnvIntVar(NAME, 7)), "name               ZU_TEST_ENV value 0 default 7");
    EXPECT_EQ(dumpOf(EnvDoubleVar(NAME, 7)), "name               ZU_TEST_ENV value 0 default 7");
}

TEST_F(EnvVarTest, NumbersAreWrittenByTheStreamsFormat)
{
    _guard.set("255");
    const EnvIntVar number(NAME, 16);
    const EnvDoubleVar real(NAME, 0.125);
    std::ostringstream out;
    out << std::hex << std::showbase << std::uppercase << number << '\n';
    out << std::dec << std::showpos << number << '\n';
    out.precision(2);
    out << std::fixed << real << '\n';
    out << std::noshowpos << std::scientific << real << '\n';
    EXPECT_EQ(out.str(), "name               ZU_TEST_ENV value 0XFF default 0X10\n"
                         "name               ZU_TEST_ENV value +255 default +16\n"
                         "name               ZU_TEST_ENV value +255.00 default +0.12\n"
                         "name               ZU_TEST_ENV value 2.55E+02 default 1.25E-01\n");
}

TEST_F(EnvVarTest, ADumpLeavesTheStreamsFormatAlone)
{
    std::ostringstream out;
    const std::ios_base::fmtflags flags = out.flags();
    out << EnvVar(NAME, nullptr) << EnvIntVar(NAME, 1) << EnvDoubleVar(NAME, 1);
    EXPECT_EQ(out.flags(), flags);
    EXPECT_EQ(out.width(), 0);
    EXPECT_EQ(out.precision(), 6);
    EXPECT_EQ(out.fill(), ' ');
}

TEST_F(EnvVarTest, TheFieldOfTheNameIsFilledWithTheStreamsFill)
{
    std::ostringstream out;
    out.fill('.');
    out << EnvIntVar(NAME, 1);
    EXPECT_EQ(out.str(), "name ..............ZU_TEST_ENV value 1 default 1");
}

TEST_F(EnvVarTest, ANaNIsWrittenWithoutASign)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(dumpOf(EnvDoubleVar(NAME, nan)),
              "name               ZU_TEST_ENV value nan default nan");
    EXPECT_EQ(dumpOf(EnvDoubleVar(NAME, -nan)),
              "name               ZU_TEST_ENV value nan default nan");
}

class OwnVar : public EnvVar
{
public:
    using EnvVar::EnvVar;

    void dump(std::ostream& os) const override
    {
        os << "own " << getName();
    }
};

TEST_F(EnvVarTest, PrintingIsTheVirtualDump)
{
    const OwnVar own(NAME, nullptr);
    const EnvVar& variable = own;
    EXPECT_EQ(printed(variable), "own ZU_TEST_ENV");
    const EnvIntVar number(NAME, 7);
    EXPECT_EQ(printed<EnvVar>(number), "name               ZU_TEST_ENV value 7 default 7");
}

TEST_F(EnvVarTest, ARegistryIsPrintedWithALineEndBeforeEachObject)
{
    EnvVar text(NAME, "x");
    EnvIntVar number(NAME, 7);
    OwnVar own(NAME, nullptr);
    EXPECT_EQ(printed(EnvVarRegistry{&text, &number}),
              "\nname               ZU_TEST_ENV value \"NIL\" default \"x\""
              "\nname               ZU_TEST_ENV value 7 default 7");
    EXPECT_EQ(printed(EnvVarRegistry{&own, &number, &own}),
              "\nown ZU_TEST_ENV"
              "\nname               ZU_TEST_ENV value 7 default 7"
              "\nown ZU_TEST_ENV");
    EXPECT_EQ(printed(EnvVarRegistry{}), "");
}

TEST_F(EnvVarTest, TheRegistryPrintsWhatLives)
{
    const std::string before = printed(EnvVar::getRegistry());
    ASSERT_FALSE(before.empty());
    EXPECT_EQ(before.front(), '\n');
    EXPECT_NE(before.back(), '\n');
    {
        const EnvVar text(NAME, "x");
        const EnvDoubleVar number(NAME, 0.5);
        EXPECT_EQ(printed(EnvVar::getRegistry()),
                  before + "\nname               ZU_TEST_ENV value \"NIL\" default \"x\""
                           "\nname               ZU_TEST_ENV value 0.5 default 0.5");
    }
    EXPECT_EQ(printed(EnvVar::getRegistry()), before);
}

} // namespace
