#include "app/apCheck.h"

#include "app/apCheckRecord.h"
#include "app/apTestInform.h"

namespace Zu
{

namespace
{

std::string placed(const char* file, int line, const std::string& text)
{
    return std::string(file) + ":" + std::to_string(line) + ": " + text;
}

// Each line further to the right than the one of the check.
std::string indented(const std::string& text)
{
    std::string result;
    for (std::size_t begin = 0; begin < text.size();)
    {
        std::size_t end = text.find('\n', begin);
        if (end == std::string::npos) end = text.size();
        result += "\n    " + text.substr(begin, end - begin);
        begin = end + 1;
    }
    return result;
}

} // namespace

bool ApCheck::pass(const char* file, int line, const char* what)
{
    ApCheckRecord& record = ApCheckRecord::ofProcess();
    if (!record.count()) record.addOutside(placed(file, line, what));
    return true;
}

bool ApCheck::pass(const char* file, int line, const char* left, const char* middle,
                   const char* right)
{
    ApCheckRecord& record = ApCheckRecord::ofProcess();
    if (!record.count()) record.addOutside(placed(file, line, joined(left, middle, right)));
    return true;
}

bool ApCheck::fail(const char* file, int line, const std::string& what, const std::string& details)
{
    ApCheckRecord& record = ApCheckRecord::ofProcess();
    const std::string text = placed(file, line, what) + indented(details);
    if (record.count())
        record.fail(text);
    else
        record.addOutside(text);
    return false;
}

std::string ApCheck::detail(const char* expression, const std::string& value)
{
    return value == expression ? "" : std::string(expression) + ": " + value + "\n";
}

std::string ApCheck::raisedDetail()
{
    return "raised: " + apExceptionText();
}

std::string ApCheck::joined(const char* left, const char* middle, const char* right)
{
    return std::string(left) + " " + middle + " " + right;
}

} // namespace Zu
