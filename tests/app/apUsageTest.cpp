#include "app/apUsage.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace
{

using Zu::ApSetting;
using Zu::ApSettings;
using Zu::ApUsage;

ApSettings someSettings()
{
    ApSetting port;
    port._handle = "server::port";
    port._kind = ApSetting::Kind::Integer;
    port._letter = 'p';
    port._takesValue = true;
    port._longName = "port";
    port._variable = "SERVER_PORT";
    port._default = "8080";
    port._defaultText = "the usual one";
    port._description = "port to listen on";
    ApSetting directory;
    directory._letter = 'd';
    directory._takesValue = true;
    directory._default = "";
    directory._description = "directory";
    directory._defaultText = "directory";
    ApSetting loud;
    loud._letter = 'v';
    loud._longName = "a-very-long-name-indeed";
    loud._description = "says more";
    ApSetting key;
    key._handle = "server::key";
    key._variable = "SERVER_KEY";
    key._description = "the key";
    key._isRequired = true;
    ApSetting own;
    own._handle = "Zu::own";
    own._variable = "ZU_OWN";
    return ApSettings({port, directory, loud, key, own});
}

TEST(ApUsage, ExplainsWhatCanBeGiven)
{
    const ApSettings settings = someSettings();
    const ApUsage usage{"server",
                        "Answers requests.",
                        "FILE...",
                        &settings,
                        {{'h', false, "help"}, {0, false, "version"}, {0, false, "completion"}}};
    EXPECT_EQ(
        usage.help(),
        "usage: server [option]... FILE...\n"
        "Answers requests.\n"
        "\n"
        "options:\n"
        "  -p, --port=VALUE        port to listen on [SERVER_PORT] [default: 8080, the usual one]\n"
        "  -d VALUE                directory [default: empty]\n"
        "  -v, --a-very-long-name-indeed\n"
        "                          says more\n"
        "  -h, --help              shows this text, and ends\n"
        "      --version           shows the version, and ends\n"
        "      --completion        writes a completion for bash, and ends\n"
        "\n"
        "environment:\n"
        "  SERVER_KEY              the key [required]\n");
}

TEST(ApUsage, LeavesOutWhatThereIsNot)
{
    const ApSettings none;
    const ApUsage usage{"a", "", "", &none, {{0, false, "help"}}};
    EXPECT_EQ(usage.help(), "usage: a [option]...\n"
                            "\n"
                            "options:\n"
                            "      --help              shows this text, and ends\n");
}

TEST(ApUsage, NamesTheFileOfSettings)
{
    const ApSettings none;
    const ApUsage usage{"a", "", "", &none, {{0, true, "settings"}}, "/etc/a.toml"};
    EXPECT_EQ(usage.help(),
              "usage: a [option]...\n"
              "\n"
              "options:\n"
              "      --settings=VALUE    reads settings from this file [default: /etc/a.toml]\n");
}

TEST(ApUsage, CompletesOptions)
{
    const ApSettings settings = someSettings();
    const ApUsage usage{"my-server", "", "", &settings, {{'h', false, "help"}}};
    EXPECT_EQ(
        usage.completion(),
        "_complete_my_server()\n"
        "{\n"
        "    [[ ${COMP_WORDS[COMP_CWORD]} == -* ]] || return 0\n"
        "    mapfile -t COMPREPLY < <(compgen -W '-p --port -d -v --a-very-long-name-indeed -h "
        "--help' -- \"${COMP_WORDS[COMP_CWORD]}\")\n"
        "}\n"
        "complete -o default -F _complete_my_server 'my-server'\n");
    const ApUsage quoted{"it's", "", "", &settings, {{'h', false, "help"}}};
    EXPECT_NE(quoted.completion().find("\ncomplete -o default -F _complete_it_s 'it'\\''s'\n"),
              std::string::npos);
}

TEST(ApUsage, VersionsAreWhatTheRecordHas)
{
    EXPECT_EQ(Zu::apVersion({"Shop", 1, 4, "beta", "libShop", "Shop_12", "S. 12", "Nov 24 2026"}),
              "Shop 1.4 beta\n"
              "library: libShop\n"
              "stamp: Shop_12\n"
              "built on: Nov 24 2026\n");
    EXPECT_EQ(Zu::apVersion({"Shop", 1, 4, "", nullptr}), "Shop 1.4\n");
}

TEST(ApUsage, ProgramsAreNamedWithoutDirectories)
{
    const struct
    {
        const char* _path;
        const char* _name;
    } cases[] = {
        {"server", "server"},
        {"/usr/bin/server", "server"},
        {"C:\\bin\\server.exe", "server"},
        {"build/x.y", "x.y"},
        {".exe", ".exe"},
        {"", ""},
    };
    for (const auto& row : cases) EXPECT_EQ(Zu::apProgramName(row._path), row._name);
}

} // namespace
