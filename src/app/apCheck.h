/// @file
/// Checks of test programs, which report what they compare.

#ifndef ZU_APP_APCHECK_H
#define ZU_APP_APCHECK_H

#include "apCheckValue.h"
#include "appApi.h"

#include <functional>
#include <string>

namespace Zu
{

/// What the macros below call: counts checks, and reports those that fail.
///
/// A check belongs to the group that runs, whatever thread makes it; threads must be joined before
/// the group ends. One that fails is reported in one piece, with its place and the values, where
/// the test framework reports failures: in the file that ZU_RUN_TEST_MSGS names, or through the
/// trace manager. The group goes on, and has failed. A check that is made while runTests() runs no
/// group is an error, even if it holds: it is reported, and the program ends with the value 2.
///
/// Thread-safety: any thread. A check of numbers that holds costs a few nanoseconds.
class ZU_APP_API ApCheck
{
public:
    ApCheck() = delete;

    /// A check with the text `what` holds. Returns true.
    static bool pass(const char* file, int line, const char* what);

    /// A check does not hold. The details are lines below its text, indented here; may be empty.
    /// Returns false.
    static bool fail(const char* file, int line, const std::string& what,
                     const std::string& details);

    /// A line of details: an expression and the text of its value. Empty if both are the same, as
    /// for a number in the source.
    static std::string detail(const char* expression, const std::string& value);

    /// A line of details about the exception that is being handled.
    static std::string raisedDetail();

    /// @{
    /// Make a check and report it. Return whether it holds.
    template <class A, class B, class Compare>
    static bool compare(const char* file, int line, const char* aText, const char* sign,
                        const char* bText, const A& a, const B& b, const Compare& comparison)
    {
        if (apCompare(a, b, comparison)) return pass(file, line, aText, sign, bText);
        return fail(file, line, joined(aText, sign, bText),
                    detail(aText, apShown(a)) + detail(bText, apShown(b)));
    }

    template <class A, class B, class Tolerance>
    static bool areNear(const char* file, int line, const char* aText, const char* bText,
                        const char* toleranceText, const A& a, const B& b,
                        const Tolerance& tolerance)
    {
        if (apAreNear(a, b, tolerance)) return pass(file, line, aText, "is near", bText);
        return fail(file, line, joined(aText, "is near", bText),
                    detail(aText, apShown(a)) + detail(bText, apShown(b)) +
                        detail(toleranceText, apShown(tolerance)));
    }

    template <class Exception, class Statement>
    static bool raises(const char* file, int line, const char* statementText,
                       const char* exceptionText, const Statement& statement)
    {
        std::string details = "nothing was raised";
        try
        {
            statement();
        }
        catch (const Exception&)
        {
            return pass(file, line, statementText, "raises", exceptionText);
        }
        catch (...)
        {
            details = raisedDetail();
        }
        return fail(file, line, joined(statementText, "raises", exceptionText), details);
    }
    /// @}

private:
    static bool pass(const char* file, int line, const char* left, const char* middle,
                     const char* right);
    static std::string joined(const char* left, const char* middle, const char* right);
};

} // namespace Zu

/// @{
/// Checks that a condition holds. These macros are expressions of type bool: a group that can't go
/// on after a failure says `if (!ZU_CHECK(file)) return;`. Their operands are evaluated once.
#define ZU_CHECK(...)                                                                              \
    (static_cast<bool>(__VA_ARGS__) ? ::Zu::ApCheck::pass(__FILE__, __LINE__, #__VA_ARGS__)        \
                                    : ::Zu::ApCheck::fail(__FILE__, __LINE__, #__VA_ARGS__, {}))

/// Compare two values; apCompare() says how, apShown() what is shown of them.
#define ZU_CHECK_EQUAL(a, b) ZU_CHECK_COMPARISON(a, ==, b, ::std::equal_to<>())
#define ZU_CHECK_NOT_EQUAL(a, b) ZU_CHECK_COMPARISON(a, !=, b, ::std::not_equal_to<>())
#define ZU_CHECK_LESS(a, b) ZU_CHECK_COMPARISON(a, <, b, ::std::less<>())
#define ZU_CHECK_LESS_EQUAL(a, b) ZU_CHECK_COMPARISON(a, <=, b, ::std::less_equal<>())
#define ZU_CHECK_GREATER(a, b) ZU_CHECK_COMPARISON(a, >, b, ::std::greater<>())
#define ZU_CHECK_GREATER_EQUAL(a, b) ZU_CHECK_COMPARISON(a, >=, b, ::std::greater_equal<>())

/// Checks that two values differ by no more than a tolerance, as apAreNear() finds out.
#define ZU_CHECK_NEAR(a, b, tolerance)                                                             \
    ::Zu::ApCheck::areNear(__FILE__, __LINE__, #a, #b, #tolerance, a, b, tolerance)

/// Checks that a statement raises an exception of this type or of one derived from it. A statement
/// whose result must not be ignored converts it to void.
#define ZU_CHECK_THROWS(statement, Type)                                                           \
    ::Zu::ApCheck::raises<Type>(__FILE__, __LINE__, #statement, #Type, [&] { statement; })

/// What the comparisons have in common.
#define ZU_CHECK_COMPARISON(a, sign, b, comparison)                                                \
    ::Zu::ApCheck::compare(__FILE__, __LINE__, #a, #sign, #b, a, b, comparison)
/// @}

#endif
