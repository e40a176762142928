#include "zulog/zlReplacement.h"

#include "app/lgMapFile.h"
#include "zulog/zlFile.h"
#include "zulog/zlNames.h"
#include "zulog/zlPlatform.h"

#include <cerrno>
#include <filesystem>
#include <system_error>

namespace Zu
{

namespace
{

namespace fs = std::filesystem;

// Behind all links.
std::string placeOf(const std::string& name)
{
    std::error_code error;
    const fs::path place = fs::canonical(zlPathOf(name), error);
    return error ? name : zlNameOf(place);
}

} // namespace

ZlReplacement::ZlReplacement(const std::string& name)
    : _name(name), _place(placeOf(name)), _beside(_place)
{
    std::error_code ignored;
    const fs::file_status present = fs::status(zlPathOf(_place), ignored);
    const bool isReplaced = !fs::exists(present) || fs::is_regular_file(present);
    if (isReplaced) _beside += "." + std::to_string(lgProcessFacts()._process) + ".new";
    std::string reason;
    _file = ZlPlatform::openToWrite(_beside, isReplaced, reason);
    if (!_file) fail("opened", reason);
    if (isReplaced && fs::exists(present))
        fs::permissions(zlPathOf(_beside), present.permissions(), ignored);
}

ZlReplacement::~ZlReplacement()
{
    if (_file) std::fclose(_file);
    std::error_code ignored;
    if (_beside != _place) fs::remove(zlPathOf(_beside), ignored);
}

void ZlReplacement::finish()
{
    const bool isClosed = std::fclose(_file) == 0;
    _file = nullptr;
    if (!isClosed) fail("written", std::generic_category().message(errno));
    if (_beside == _place) return;
    std::error_code error;
    fs::rename(zlPathOf(_beside), zlPathOf(_place), error);
    if (error) fail("replaced", error.message());
    _beside = _place;
}

void ZlReplacement::fail(const char* what, const std::string& reason) const
{
    throw ZlError("\"" + _name + "\" can't be " + what + ": " + reason);
}

} // namespace Zu
