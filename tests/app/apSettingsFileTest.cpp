#include "app/apSettingsFile.h"

#include "base/inContextAlias.h"
#include "base/inPackageInit.h"
#include "base/inVariable.h"
#include "support/tempDir.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

namespace
{

using Zu::ApFileError;
using Zu::ApFileValue;
using Zu::ApSetting;
using Zu::ApSettings;
using Zu::ApSettingsFile;

using Texts = std::vector<std::string>;

// In each line a kind, a name, and a text: "i server::port 80". "!" is an error.
class PlainFormat : public Zu::ApFileFormat
{
public:
    std::vector<ApFileValue> read(const std::string& content) const override
    {
        std::vector<ApFileValue> values;
        std::istringstream lines(content);
        std::string line;
        for (int number = 1; std::getline(lines, line); ++number)
        {
            std::istringstream words(line);
            char kind = 0;
            ApFileValue value;
            words >> kind >> value._name >> value._text;
            if (kind == '!') throw ApFileError(number, "it is no line");
            if (kind == 'i') value._kind = ApFileValue::Kind::Integer;
            if (kind == 's') value._kind = ApFileValue::Kind::Switch;
            value._line = number;
            values.push_back(value);
        }
        return values;
    }
};

ApSettings someSettings()
{
    ApSetting port;
    port._handle = "server::port";
    port._kind = ApSetting::Kind::Integer;
    port._least = 0;
    port._most = 65535;
    ApSetting loud;
    loud._handle = "server::loud";
    loud._kind = ApSetting::Kind::Switch;
    ApSetting name;
    name._handle = "name";
    ApSetting own;
    own._handle = "Zu::own";
    ApSetting bare;
    bare._letter = 'b';
    return ApSettings({bare, port, loud, name, own});
}

Texts take(ApSettingsFile& file, const std::string& content)
{
    return file.take("f.toml", content, PlainFormat(), someSettings());
}

TEST(ApSettingsFile, TakesWhatSettingsTake)
{
    ApSettingsFile file;
    EXPECT_EQ(take(file, "i server::port 80\ns server::loud true\nt name x\nt Zu::own y\n"),
              Texts{});
    for (const char* const handle : {"server::port", "server::loud", "name", "Zu::own"})
        EXPECT_TRUE(file.has(handle)) << handle;
    EXPECT_FALSE(file.has("server"));
    EXPECT_STREQ(file.getDescription(), "f.toml");
}

TEST(ApSettingsFile, ReportsWhatTheyDoNotTake)
{
    const struct
    {
        const char* _content;
        Texts _errors;
    } cases[] = {
        {"", {}},
        {"i server::prot 80",
         {"f.toml:1: there is no setting 'server::prot'; did you mean 'server::port'?"}},
        {"\ni x 80",
         {"f.toml:1: there is no setting ''; the settings are server::port, server::loud, name",
          "f.toml:2: there is no setting 'x'; the settings are server::port, server::loud, name"}},
        {"t server::port 80",
         {"f.toml:1: 'server::port' needs a whole number from 0 to 65535, not '80'"}},
        {"i server::port 65536",
         {"f.toml:1: 'server::port' needs a whole number from 0 to 65535, not '65536'"}},
        {"i server::port 9223372036854775807",
         {"f.toml:1: 'server::port' needs a whole number from 0 to 65535, not "
          "'9223372036854775807'"}},
        {"i server::loud 1", {"f.toml:1: 'server::loud' needs 0, 1, false or true, not '1'"}},
        {"i name 1", {"f.toml:1: 'name' needs a text, not '1'"}},
        {"t name x\n!", {"f.toml:2: it is no line"}},
        {"t name x\nt name y", {"f.toml:2: 'name' has a value already"}},
    };
    for (const auto& row : cases)
    {
        ApSettingsFile file;
        EXPECT_EQ(take(file, row._content), row._errors);
    }
}

// One text with a null character.
class NullFormat : public Zu::ApFileFormat
{
public:
    std::vector<ApFileValue> read(const std::string&) const override
    {
        ApFileValue value;
        value._name = "name";
        value._text = std::string("x\0y", 3);
        value._line = 7;
        return {value};
    }
};

TEST(ApSettingsFile, RefusesTextsThatAVariableCannotHold)
{
    ApSettingsFile file;
    EXPECT_EQ(file.take("f.toml", "", NullFormat(), someSettings()),
              Texts{"f.toml:7: the text of 'name' has a null character"});
    EXPECT_FALSE(file.has("name"));
}

class AnyPackage : public Zu::InPackageInitBase
{
public:
    void addDependency(Zu::InVariableBase*) override {}
    void removeDependency(Zu::InVariableBase*) override {}
};

TEST(ApSettingsFile, IsASourceOfVariables)
{
    AnyPackage package;
    Zu::InVariable<int> port("server::port", package, Zu::InVariableBase::_dummy);
    Zu::InVariable<const char*> other("server::other", package, Zu::InVariableBase::_dummy);
    ApSettingsFile file;
    EXPECT_EQ(take(file, "i server::port 80"), Texts{});
    EXPECT_STREQ(file.find(port), "80");
    EXPECT_EQ(file.find(other), nullptr);
}

TEST(ApSettingsFile, IsLoadedFromItsFile)
{
    const support::TempDir dir;
    const std::string path = dir.file("f.plain");
    std::ofstream(path) << "t name x\n";
    namespace fs = std::filesystem;
    fs::permissions(path, fs::perms::owner_read | fs::perms::owner_write);
    ApSettingsFile file;
    EXPECT_EQ(file.load(path, PlainFormat(), someSettings()), Texts{});
    EXPECT_TRUE(file.has("name"));
    const Texts errors = file.load(dir.file("none"), PlainFormat(), someSettings());
    ASSERT_EQ(errors.size(), 1U);
    EXPECT_EQ(errors[0].rfind(dir.file("none") + ": can't be read: ", 0), 0U) << errors[0];
}

} // namespace
