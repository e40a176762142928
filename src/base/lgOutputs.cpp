#include "base/lgOutputs.h"

#include "base/osOutputFile.h"

#include <locale>

namespace Zu
{

void LgOutputs::open(const LgSetup& setup, const std::function<void(std::ofstream&)>& opened)
{
    for (const LgTypes::Level level : LG_LEVELS)
    {
        const LgLevelSetup& own = setup[level];
        if (!own._file) continue;
        _streams[level] = openedBefore(setup, level);
        if (_streams[level]) continue;
        const auto stream = std::make_shared<std::ofstream>();
        osOpenOutput(*stream, own._file->c_str(), own._append);
        // Its buffer is another one now, with the global locale.
        stream->imbue(std::locale::classic());
        _streams[level] = stream;
        opened(*stream);
    }
}

std::shared_ptr<std::ofstream> LgOutputs::openedBefore(const LgSetup& setup,
                                                       LgTypes::Level level) const
{
    for (const LgTypes::Level earlier : LG_LEVELS)
    {
        if (earlier == level) return nullptr;
        if (setup[earlier]._file == setup[level]._file) return _streams[earlier];
    }
    return nullptr;
}

void LgOutputs::close(LgTypes::Level level)
{
    const std::shared_ptr<std::ofstream> stream = _streams[level];
    for (auto& other : _streams)
        if (other == stream) other.reset();
}

void LgOutputs::closeAll()
{
    for (auto& stream : _streams) stream.reset();
}

} // namespace Zu
