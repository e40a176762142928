// Two test groups with the same name: the program does not reach its main function.

#include "base/testGroup.h"
#include "base/testMgr.h"

#include <iostream>

namespace
{

class Group : public Zu::TestGroup
{
public:
    explicit Group(const char* name) : TestGroup(name) {}

    void run(int, char** const) override {}
};

bool tellState(const char* when, const Zu::TestGroup* expected)
{
    const bool found = Zu::TestGroup::getInstance("twin") == expected;
    std::cout << when << ": " << (found ? "as it should be" : "wrong") << std::endl;
    return found;
}

[[maybe_unused]] const bool atFirst = tellState("without groups", nullptr);
Group theFirst("twin");
[[maybe_unused]] const bool behindTheFirst = tellState("with a group", &theFirst);
Group theSecond("twin");

} // namespace

int main(int argc, char** argv)
{
    std::cout << "main" << std::endl;
    return Zu::TestMgr::runTest(argc, argv);
}
