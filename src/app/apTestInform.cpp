#include "app/apTestInform.h"

#include "base/exBase.h"
#include "base/osEnv.h"
#include "base/osOutputFile.h"
#include "base/traceManager.h"
#include "base/typeName.h"

#include <exception>
#include <fstream>
#include <iostream>
#include <mutex>
#include <typeinfo>

namespace Zu
{

namespace
{

struct Place
{
    // Messages of several threads come one after the other.
    std::mutex _mutex;
    // The file that has messages of this process.
    std::string _begun;
};

// Never destroyed: checks may fail while the process ends.
Place& place()
{
    static Place* const thePlace = new Place;
    return *thePlace;
}

bool append(const std::string& file, std::string& begun, const std::string& message)
{
    std::ofstream stream;
    osOpenOutput(stream, file.c_str(), begun == file);
    if (!stream) return false;
    begun = file;
    // In one piece, since the stream has no buffer.
    stream << message + "\n" << std::flush;
    return stream.good();
}

} // namespace

void apTestInform(const std::string& message)
{
    const std::lock_guard guard(place()._mutex);
    const char* const file = OsEnv::getVariable("ZU_RUN_TEST_MSGS");
    if (!file || *file == '\0')
        TraceManager::getInstance().print(message.c_str());
    else if (!append(file, place()._begun, message))
        std::cerr << message + "\n" << std::flush;
}

std::string apExceptionText()
{
    try
    {
        throw;
    }
    catch (const ExBase& exception)
    {
        return exception.getDetailedReason();
    }
    catch (const std::exception& exception)
    {
        return std::string("[Exception Type = ") + typeName(typeid(exception)) + "]\n" +
               exception.what();
    }
    catch (...)
    {
        return "Unknown exception.";
    }
}

} // namespace Zu
