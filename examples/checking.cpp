// A test program whose groups check values.
#include "app/apTestRunner.h"

#include <stdexcept>
#include <string>
#include <thread>

namespace
{

int numberOf(const std::string& text)
{
    return std::stoi(text);
}

class NumbersTest : public Zu::TestGroup
{
public:
    NumbersTest() : TestGroup("Numbers") {}

    void run(int, char** const) override
    {
        ZU_CHECK_EQUAL(numberOf("12"), 12);
        ZU_CHECK_THROWS(numberOf("twelve"), std::invalid_argument);
        std::thread other([] { ZU_CHECK_LESS(numberOf("-1"), 0U); });
        other.join();
    }
} theNumbersTest;

// It fails, to show what that looks like.
class BrokenTest : public Zu::TestGroup
{
public:
    BrokenTest() : TestGroup("Broken") {}

    void run(int, char** const) override
    {
        const std::string text = "12 apples";
        ZU_CHECK_EQUAL(text.substr(0, 3), "12");
        ZU_CHECK_NEAR(numberOf(text) / 8.0, 1.0, 0.25);
        if (!ZU_CHECK(text.size() < 5)) return;
        ZU_CHECK_EQUAL(text[4], 'a');
    }
} theBrokenTest;

} // namespace

int main(int argc, char** argv)
{
    return Zu::runTests(argc, argv);
}
