#include "app/apSettings.h"

#include "base/inContextAlias.h"
#include "base/inPackageInit.h"
#include "base/inVariable.h"

#include <climits>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

namespace
{

using Zu::ApCommandLine;
using Zu::ApOption;
using Zu::ApSetting;
using Zu::ApSettings;
using Zu::InVariableBase;

using Texts = std::vector<std::string>;
using Kind = ApSetting::Kind;

class AnyPackage : public Zu::InPackageInitBase
{
public:
    void addDependency(InVariableBase*) override {}
    void removeDependency(InVariableBase*) override {}
};

TEST(ApSettings, AreWhatAliasesAndVariablesDeclare)
{
    AnyPackage package;
    const Zu::InArgAlias portOption("P:", "port to listen on");
    const Zu::InEnvAlias portVariable("AP_SETTINGS_PORT", "port of the server");
    const Zu::InDefAlias portDefault("8080", "usual port");
    const Zu::InDefAlias second("1", "never used");
    const Zu::InVariable<int> port("apSettings::port", package, portDefault, portVariable,
                                   portOption, second);
    const Zu::InEnvAlias loud("AP_SETTINGS_LOUD", "says more");
    const Zu::InVariable<bool> isLoud("apSettings::loud", package, loud);
    const Zu::InArgAlias bare("B", "a bare option");
    const Zu::InVariable<const char*> text("apSettings::text", package, InVariableBase::_dummy);

    ApSettings settings = ApSettings::ofProcess();
    const ApSetting* const first = settings.find('P');
    ASSERT_TRUE(first);
    EXPECT_EQ(settings.find("apSettings::port"), first);
    EXPECT_EQ(first->_kind, Kind::Integer);
    EXPECT_TRUE(first->_takesValue);
    EXPECT_EQ(first->_variable, "AP_SETTINGS_PORT");
    EXPECT_EQ(first->_default, "8080");
    EXPECT_EQ(first->_defaultText, "usual port");
    EXPECT_EQ(first->_description, "port to listen on");

    const ApSetting* const other = settings.find("apSettings::loud");
    ASSERT_TRUE(other);
    EXPECT_EQ(other->_kind, Kind::Switch);
    EXPECT_EQ(other->_letter, 0);
    EXPECT_EQ(other->_description, "says more");
    EXPECT_FALSE(other->_default);

    const ApSetting* const option = settings.find('B');
    ASSERT_TRUE(option);
    EXPECT_EQ(option->_handle, "");
    EXPECT_FALSE(option->_takesValue);
    EXPECT_EQ(option->_description, "a bare option");

    ASSERT_TRUE(settings.find("apSettings::text"));
    EXPECT_EQ(settings.find("apSettings::text")->_kind, Kind::Text);
    EXPECT_FALSE(settings.find("apSettings::unknown"));
    EXPECT_FALSE(settings.find('Q'));
    EXPECT_LT(option, first) << "in the order of the letters";
    EXPECT_LT(first, other) << "those with a letter come first";
}

TEST(ApSettings, FurtherOptionsAndVariablesSetTheSameValue)
{
    AnyPackage package;
    const Zu::InArgAlias port("P:", "port to listen on");
    const Zu::InArgAlias old("O:", "the same, as it was once called");
    const Zu::InEnvAlias variable("AP_SETTINGS_PORT", "port of the server");
    const Zu::InEnvAlias oldVariable("AP_SETTINGS_OLD", "port of the server");
    const Zu::InVariable<int> number("apSettings::port", package, port, old, variable, oldVariable);
    const Zu::InVariable<bool> isOn("apSettings::switch", package, old);
    const ApSettings settings = ApSettings::ofProcess();

    const ApSetting* const setting = settings.find("apSettings::port");
    ASSERT_TRUE(setting);
    const std::string letters = setting->_letter + setting->_moreLetters;
    EXPECT_TRUE(letters == "PO" || letters == "OP") << letters;
    const std::string variables =
        setting->_variable + testing::PrintToString(setting->_moreVariables);
    EXPECT_TRUE(variables == "AP_SETTINGS_PORT{ \"AP_SETTINGS_OLD\" }" ||
                variables == "AP_SETTINGS_OLD{ \"AP_SETTINGS_PORT\" }")
        << variables;
    std::string shown;
    for (const ApOption& option : settings.options()) shown += option._letter;
    EXPECT_EQ(shown.find('O'), shown.rfind('O')) << shown;
    EXPECT_NE(shown.find('P'), shown.npos) << shown;
    int rows = 0;
    for (const ApSetting& other : settings.get()) rows += other._letter == 'O' ? 1 : 0;
    EXPECT_EQ(rows, 1);

    const ApSetting* const other = settings.find("apSettings::switch");
    ASSERT_TRUE(other);
    EXPECT_EQ(other->_letter == 'O' || other->_moreLetters == "O", true);

    const std::vector<ApOption> options = settings.options();
    const auto errorsOf = [&](const Texts& words, const char* name, const char* text)
    {
        const auto environment = [&](const char* asked)
        { return std::string(asked) == name ? text : nullptr; };
        Texts errors;
        for (const std::string& error : settings.check(ApCommandLine(options, words), options,
                                                       environment, [](auto&&) { return false; }))
            if (error.find("whole number") != error.npos) errors.push_back(error);
        return errors;
    };
    const std::string expected = " needs a whole number, not 'x'";
    EXPECT_EQ(errorsOf({"-P", "x"}, "", ""), Texts{"option '-P'" + expected});
    EXPECT_EQ(errorsOf({"-O", "x"}, "", ""), Texts{"option '-O'" + expected});
    EXPECT_EQ(errorsOf({"-O", "1"}, "AP_SETTINGS_PORT", "x"), Texts{});
    for (const char* const name : {"AP_SETTINGS_PORT", "AP_SETTINGS_OLD"})
        EXPECT_EQ(errorsOf({}, name, "x"), Texts{std::string("the variable ") + name + expected});
}

ApSetting integer(char letter, const char* variable, int least = INT_MIN, int most = INT_MAX)
{
    ApSetting setting;
    setting._handle = "number";
    setting._kind = Kind::Integer;
    setting._letter = letter;
    setting._takesValue = true;
    setting._longName = "port";
    setting._variable = variable;
    setting._description = "port to listen on";
    setting._least = least;
    setting._most = most;
    return setting;
}

struct Case
{
    Texts _words;
    std::map<std::string, std::string> _environment;
    Texts _errors;
    // The variable that has a value in a file.
    std::string _inFile = "none";
};

void expectErrors(const ApSetting& setting, const std::vector<Case>& cases)
{
    const ApSettings settings({setting});
    const std::vector<ApOption> options = settings.options();
    for (const Case& row : cases)
    {
        const ApCommandLine line(options, row._words);
        const auto environment = [&](const char* name) -> const char*
        {
            const auto found = row._environment.find(name);
            return found != row._environment.end() ? found->second.c_str() : nullptr;
        };
        const auto inFile = [&](const std::string& handle) { return row._inFile == handle; };
        const Texts errors = settings.check(line, options, environment, inFile);
        EXPECT_EQ(errors, row._errors) << testing::PrintToString(row._words);
    }
}

TEST(ApSettings, IntegersAreWholeAndInRange)
{
    const auto refused = [](const std::string& place, const std::string& text)
    { return Texts{place + " needs a whole number from 0 to 65535, not '" + text + "'"}; };
    expectErrors(integer('p', "PORT", 0, 65535),
                 {{{}, {}, {}},
                  {{"-p", "0"}, {}, {}},
                  {{"-p", "65535"}, {}, {}},
                  {{"-p", "-0"}, {}, {}},
                  {{"-p", "007"}, {}, {}},
                  {{"-p", "65536"}, {}, refused("option '-p'", "65536")},
                  {{"-p", "-1"}, {}, refused("option '-p'", "-1")},
                  {{"-p", "notanumber"}, {}, refused("option '-p'", "notanumber")},
                  {{"--port=2x"}, {}, refused("option '--port'", "2x")},
                  {{"--port="}, {}, refused("option '--port'", "")},
                  {{"-p", " 2"}, {}, refused("option '-p'", " 2")},
                  {{"-p", "+2"}, {}, refused("option '-p'", "+2")},
                  {{"-p", "1.0"}, {}, refused("option '-p'", "1.0")},
                  {{"-p", "99999999999"}, {}, refused("option '-p'", "99999999999")},
                  {{"-p", "x", "-p", "1"}, {}, refused("option '-p'", "x")},
                  {{"-p", "x", "-p", "y"},
                   {},
                   {refused("option '-p'", "x")[0], refused("option '-p'", "y")[0]}},
                  {{}, {{"PORT", "80"}}, {}},
                  {{}, {{"PORT", ""}}, refused("the variable PORT", "")},
                  {{}, {{"PORT", "80 "}}, refused("the variable PORT", "80 ")},
                  {{"-p", "1"}, {{"PORT", "unused"}}, {}}});
}

TEST(ApSettings, RangesAreSaidAsTheyAre)
{
    const struct
    {
        int _least;
        int _most;
        const char* _expected;
    } cases[] = {
        {INT_MIN, INT_MAX, "a whole number"},
        {1, INT_MAX, "a whole number of at least 1"},
        {INT_MIN, -1, "a whole number of at most -1"},
        {-5, 5, "a whole number from -5 to 5"},
    };
    for (const auto& row : cases)
        expectErrors(
            integer('p', "PORT", row._least, row._most),
            {{{"-p", "x"}, {}, {std::string("option '-p' needs ") + row._expected + ", not 'x'"}}});
}

TEST(ApSettings, SwitchesAreOnOrOff)
{
    ApSetting setting = integer('s', "SWITCH");
    setting._kind = Kind::Switch;
    const auto refused = [](const char* text)
    { return Texts{std::string("option '-s' needs 0, 1, false or true, not '") + text + "'"}; };
    expectErrors(setting, {{{"-s", "0"}, {}, {}},
                           {{"-s", "1"}, {}, {}},
                           {{"-s", "FALSE"}, {}, {}},
                           {{"-s", "True"}, {}, {}},
                           {{"-s", "no"}, {}, refused("no")},
                           {{"-s", ""}, {}, refused("")},
                           {{"-s", "2"}, {}, refused("2")}});
    setting._takesValue = false;
    expectErrors(setting, {{{"-s"}, {}, {}}});
}

TEST(ApSettings, TextsAreAnything)
{
    ApSetting setting = integer('t', "TEXT");
    setting._kind = Kind::Text;
    expectErrors(setting, {{{"-t", ""}, {}, {}}, {{"-t", "x y"}, {{"TEXT", "z"}}, {}}});
}

TEST(ApSettings, RequiredValuesAreGiven)
{
    ApSetting setting = integer('p', "PORT");
    setting._isRequired = true;
    expectErrors(
        setting,
        {{{}, {}, {"option '-p' or '--port' or the variable PORT is needed: port to listen on"}},
         {{"-p", "1"}, {}, {}},
         {{}, {{"PORT", "1"}}, {}}});
    setting._letter = 0;
    setting._longName = "";
    expectErrors(setting, {{{}, {}, {"the variable PORT is needed: port to listen on"}}});
    setting._letter = 'p';
    setting._variable = "";
    expectErrors(setting, {{{}, {}, {"option '-p' is needed: port to listen on"}}});
    setting._letter = 0;
    setting._moreLetters = "po";
    expectErrors(setting, {{{}, {}, {"option '-p' is needed: port to listen on"}}});
    setting._default = "7";
    expectErrors(setting, {{{}, {}, {}}});
}

} // namespace
