#include "base/testGroup.h"

#include "base/duplicateString.h"
#include "base/exDefine.h"
#include "base/exInternalError.h"
#include "base/plainTextStream.h"
#include "base/testTrace.h"

#include <cstring>
#include <ostream>
#include <string>

namespace Zu
{

namespace
{

std::shared_ptr<char[]> copyOf(const char* text)
{
    if (!text) return nullptr;
    ArrayPtr<char> copy = duplicateString(text);
    return std::shared_ptr<char[]>(copy.release());
}

bool isNamed(const TestGroup& group, const char* name)
{
    return group.getName() && std::strcmp(group.getName(), name) == 0;
}

} // namespace

bool TestGroup::_isPixified = false;

TestGroup::TestGroup(const char* name)
{
    if (name) setName(name);
    instances().push_back(this);
}

TestGroup::~TestGroup() = default;

std::vector<TestGroup*>& TestGroup::instances()
{
    static std::vector<TestGroup*> groups;
    return groups;
}

void TestGroup::prepare(int, char** const) {}

void TestGroup::terminate() {}

void TestGroup::dump(std::ostream&) {}

const char* TestGroup::getName() const
{
    return _name.get();
}

bool TestGroup::getPrintHeaders() const
{
    return _printHeaders;
}

bool TestGroup::getGroupNameInArgs() const
{
    return _groupNameInArgs;
}

void TestGroup::setName(const char* name)
{
    // The text may be the name that is being replaced.
    const std::shared_ptr<char[]> copy = copyOf(name);
    // A rename must not collide with the group itself.
    _name = nullptr;
    if (!copy) return;
    if (getInstance(copy.get()))
    {
        const ExText text("Duplicate test group : \"%s\".", copy.get());
        testThrow(ExInternalError(__FILE__, __LINE__, text.get()), __FILE__, __LINE__);
    }
    _name = copy;
}

void TestGroup::setUsage(const char* usage)
{
    _usage = copyOf(usage);
}

void TestGroup::setDescription(const char* description)
{
    _description = copyOf(description);
}

void TestGroup::setPrintHeaders(bool printHeaders)
{
    _printHeaders = printHeaders;
}

void TestGroup::setGroupNameInArgs(bool groupNameInArgs)
{
    _groupNameInArgs = groupNameInArgs;
}

TestGroup* TestGroup::getInstance(const char* name)
{
    if (!name) return nullptr;
    for (TestGroup* const group : instances())
        if (isNamed(*group, name)) return group;
    return nullptr;
}

void TestGroup::visitAll(const Visitor& visitor)
{
    for (TestGroup* const group : instances()) visitor(*group);
}

bool TestGroup::isPixified()
{
    return _isPixified;
}

void TestGroup::setIsPixified(bool isPixified)
{
    _isPixified = isPixified;
}

void TestGroup::caseHeader(const char* text)
{
    ZU_TRACE(Main, "");
    ZU_TRACE(Main, "***** " << ExText::orEmpty(text) << " *****");
    ZU_TRACE(Main, "");
}

void TestGroup::log(const char* text)
{
    ZU_TRACE(Main, "");
    ZU_TRACE(Main, "[ " << ExText::orEmpty(text) << " ] ");
    ZU_TRACE(Main, "");
}

void TestGroup::printInstances()
{
    testPrint("\nRegistered test groups:\n");
    for (const TestGroup* const group : instances())
    {
        std::string text = group->_name ? group->_name.get() : "<untitled>";
        text += std::string(" ") + ExText::orEmpty(group->_usage.get()) + "\n";
        if (group->_description) text += std::string(group->_description.get()) + "\n";
        testPrint(text);
    }
    PlainTextStream levels;
    Trace::printLevels(levels);
    testPrint(levels.str());
}

} // namespace Zu
