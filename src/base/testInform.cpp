#include "base/testInform.h"

#include "base/exDefine.h"
#include "base/osEnv.h"
#include "base/osOutputFile.h"
#include "base/traceManager.h"

#include <fstream>
#include <string>

namespace Zu
{

namespace
{

void inform(const char* prefix, const char* text)
{
    const std::string message = std::string(prefix) + ExText::orEmpty(text);
    const char* const file = OsEnv::getVariable("ZU_RUN_TEST_MSGS");
    if (!file || *file == '\0')
    {
        TraceManager::getInstance().print(message.c_str());
        return;
    }
    std::ofstream stream;
    osOpenOutput(stream, file, false);
    stream << message << '\n';
}

} // namespace

void TestInform::testNotPerformed(const char* text)
{
    inform("Test not performed: ", text);
}

void TestInform::exceptionEncountered(const char* text)
{
    inform("Exception encountered: ", text);
}

void TestInform::abnormalTermination(const char* text)
{
    inform("Abnormal termination: ", text);
}

} // namespace Zu
