#include "base/lgOutputs.h"

#include "base/osOutputFile.h"

#include <fstream>
#include <locale>

namespace Zu
{

namespace
{

std::shared_ptr<std::ostream> openFile(const LgLevelSetup& setup)
{
    auto stream = std::make_shared<std::ofstream>();
    osOpenOutput(*stream, setup._file->c_str(), setup._append);
    // Its buffer is another one now, with the global locale.
    stream->imbue(std::locale::classic());
    return stream;
}

} // namespace

void LgOutputs::open(const LgSetup& setup, const Opener& opener,
                     const std::function<void(std::ostream&)>& opened)
{
    for (const LgTypes::Level level : LG_LEVELS)
    {
        const LgLevelSetup& own = setup[level];
        if (!own._file) continue;
        _streams[level] = openedBefore(setup, level);
        if (_streams[level]) continue;
        if (opener) _streams[level] = opener(own._file->c_str(), own._append);
        if (!_streams[level]) _streams[level] = openFile(own);
        opened(*_streams[level]);
    }
}

std::shared_ptr<std::ostream> LgOutputs::openedBefore(const LgSetup& setup,
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
    const std::shared_ptr<std::ostream> stream = _streams[level];
    for (auto& other : _streams)
        if (other == stream) other.reset();
}

void LgOutputs::closeAll()
{
    for (auto& stream : _streams) stream.reset();
}

} // namespace Zu
