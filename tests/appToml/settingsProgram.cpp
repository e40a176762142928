// A program that takes a file of settings.

#include "app/apProgram.h"
#include "appToml/apToml.h"
#include "base/base.h"

#include <cstdlib>
#include <iostream>

ZU_PACKAGE(settingsProgram, "settingsProgram");

namespace
{

const Zu::InArgAlias portOption("p:", "port to listen on");
const Zu::InEnvAlias portVariable("SETTINGS_PORT", "port to listen on");
const Zu::InDefAlias portDefault("8080", "the usual one");
const Zu::InVariable<int> port("server::port", Zu::packageOf<settingsProgram>(), portOption,
                               portVariable, portDefault);
const Zu::InDefAlias nameDefault("nobody", "without a name");
const Zu::InVariable<const char*> name("server::name", Zu::packageOf<settingsProgram>(),
                                       nameDefault);
const Zu::InEnvAlias keyVariable("SETTINGS_KEY", "key");
const Zu::InVariable<const char*> key("server::key", Zu::packageOf<settingsProgram>(), keyVariable);
const Zu::InVariable<bool> isLoud("server::loud", Zu::packageOf<settingsProgram>(),
                                  Zu::InVariableBase::_dummy);

void show()
{
    std::cout << port.getValue() << " " << name.getValue() << " " << key.getValue() << " "
              << (isLoud.isValid() && isLoud.getValue()) << std::endl;
}

} // namespace

int main(int argc, char** argv)
{
    const Zu::ApToml toml;
    const char* const path = std::getenv("SETTINGS_DEFAULT");
    Zu::ApProgram program;
    program.settings(toml, path ? path : "").range("server::port", 0, 65535);
    program.require("server::key").withoutLog();
    return program.run(argc, argv, &show);
}
