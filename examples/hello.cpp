// A program with a package and a variable of its own.
#include "app/apProgram.h"
#include "base/base.h"
#include <iostream>

ZU_PACKAGE(hello, "hello");

// The variable and where its value may come from: an option, the environment, a default.
static Zu::InArgAlias nameOption("n:", "name to greet");
static Zu::InEnvAlias nameEnv("HELLO_NAME", "name to greet");
static Zu::InDefAlias nameDefault("world", "when nobody says");
static Zu::InVariable<const char*> name("hello::name", Zu::packageOf<hello>(), nameOption, nameEnv,
                                        nameDefault);

int main(int argc, char** argv)
{
    Zu::ApProgram program("Greets whom you name.");
    program.longName('n', "name");
    return program.run(argc, argv, [] { std::cout << "Hello, " << name.getValue() << "!\n"; });
}
