#include "zulog/zlReplacement.h"

#include "app/lgMapFile.h"
#include "zulog/zlFile.h"
#include "zulog/zlPlatform.h"

#include <cerrno>
#include <filesystem>
#include <system_error>

namespace Zu
{

namespace
{

namespace fs = std::filesystem;

fs::path pathOf(const std::string& name)
{
    return fs::path(std::u8string(name.begin(), name.end()));
}

// Behind all links.
std::string placeOf(const std::string& name)
{
    std::error_code error;
    const std::u8string place = fs::canonical(pathOf(name), error).u8string();
    return error ? name : std::string(place.begin(), place.end());
}

} // namespace

ZlReplacement::ZlReplacement(const std::string& name)
    : _name(name), _place(placeOf(name)), _beside(_place)
{
    std::error_code ignored;
    const fs::file_status present = fs::status(pathOf(_place), ignored);
    const bool isReplaced = !fs::exists(present) || fs::is_regular_file(present);
    if (isReplaced) _beside += "." + std::to_string(lgProcessFacts()._process) + ".new";
    std::string reason;
    _file = ZlPlatform::openToWrite(_beside, isReplaced, reason);
    if (!_file) fail("opened", reason);
    if (isReplaced && fs::exists(present))
        fs::permissions(pathOf(_beside), present.permissions(), ignored);
}

ZlReplacement::~ZlReplacement()
{
    if (_file) std::fclose(_file);
    std::error_code ignored;
    if (_beside != _place) fs::remove(pathOf(_beside), ignored);
}

void ZlReplacement::finish()
{
    const bool isClosed = std::fclose(_file) == 0;
    _file = nullptr;
    if (!isClosed) fail("written", std::generic_category().message(errno));
    if (_beside == _place) return;
    std::error_code error;
    fs::rename(pathOf(_beside), pathOf(_place), error);
    if (error) fail("replaced", error.message());
    _beside = _place;
}

void ZlReplacement::fail(const char* what, const std::string& reason) const
{
    throw ZlError("\"" + _name + "\" can't be " + what + ": " + reason);
}

} // namespace Zu
