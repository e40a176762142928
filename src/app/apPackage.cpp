#include "app/apPackage.h"

#include <algorithm>
#include <cstddef>
#include <exception>

namespace Zu
{

ApPart::~ApPart() = default;

ApPackage::ApPackage(const char* name) : InPackageInit(name) {}

ApPackage::~ApPackage() = default;

void ApPackage::add(ApPart& part)
{
    _parts.push_back(&part);
}

void ApPackage::remove(const ApPart& part)
{
    const auto found = std::find(_parts.begin(), _parts.end(), &part);
    if (found != _parts.end()) _parts.erase(found);
}

bool ApPackage::isUp() const
{
    return _isUp;
}

void ApPackage::performInitialize()
{
    std::size_t started = 0;
    try
    {
        for (; started < _parts.size(); ++started) _parts[started]->start();
        if (_atStart) _atStart();
    }
    catch (...)
    {
        stopParts(started);
        throw;
    }
}

void ApPackage::performFinalize()
{
    std::exception_ptr error;
    try
    {
        if (_atStop) _atStop();
    }
    catch (...)
    {
        error = std::current_exception();
    }
    stopParts(_parts.size());
    if (error) std::rethrow_exception(error);
}

void ApPackage::stopParts(std::size_t count) noexcept
{
    while (count > 0) _parts[--count]->stop();
}

void ApPackage::setInitialized(bool initialized)
{
    _isUp = initialized;
}

void ApPackage::take(ApStart start)
{
    _atStart = std::move(start._body);
}

void ApPackage::take(ApStop stop)
{
    _atStop = std::move(stop._body);
}

} // namespace Zu
