// The name of a type outlives the module of the type.

#include "base/typeName.h"
#include "support/moduleLoader.h"

#include <iostream>

int main(int, char** argv)
{
    support::Module module = support::Module::load(argv[1]);
    using TypeFunction = const std::type_info* (*)();
    const auto sampleType = reinterpret_cast<TypeFunction>(module.symbol("sampleType"));
    const char* const name = Zu::typeName(*sampleType());
    std::cout << (module.unload("sampleType") ? "unloaded" : "still there") << std::endl;
    std::cout << name << std::endl;
    std::cout << Zu::typeName(typeid(int)) << std::endl;
    return 0;
}
