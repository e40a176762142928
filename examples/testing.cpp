// A test program of the family.
#include "base/base.h"

class LookupTest : public Zu::TestGroup
{
public:
    LookupTest() : TestGroup("Lookup") {}

    void run(int argc, char** const argv) override
    {
        const Zu::Rational third(argc > 0 ? Zu::Rational(2, 6) : Zu::Rational(1, 3));
        if (third != Zu::Rational(1, 3)) throw Zu::ExInternalError(__FILE__, __LINE__, argv[0]);
    }
} theLookupTest;

int main(int argc, char** argv)
{
    return Zu::TestMgr::runTest(argc, argv);
}
