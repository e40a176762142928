#include "zulog/zlTail.h"

#include "zulog/zlInputs.h"

#include <algorithm>

namespace Zu
{

namespace
{

constexpr std::size_t NONE = static_cast<std::size_t>(-1);

// Whether the file's bytes are the log's: a compressed file has other offsets.
bool isPlain(ZlFile& file)
{
    char first[2] = {};
    const std::size_t size = file.read(first, sizeof first);
    return size < sizeof first || first[0] != '\x1f' || first[1] != '\x8b';
}

} // namespace

// Keeps the first bytes that pass.
class ZlTail::HeadSource : public ZlSource
{
public:
    HeadSource(std::unique_ptr<ZlSource> source, std::string& head)
        : _source(std::move(source)), _head(head)
    {
        _head.clear();
    }

    std::size_t read(char* place, std::size_t size) override
    {
        const std::size_t count = _source->read(place, size);
        const std::size_t room = ZlCursor::LARGEST_HEAD - _head.size();
        _head.append(place, std::min(count, room));
        _size += count;
        return count;
    }

    std::uint64_t getSize() const
    {
        return _size;
    }

private:
    const std::unique_ptr<ZlSource> _source;
    std::string& _head;
    std::uint64_t _size = 0;
};

ZlTail::ZlTail(std::string name, const Start& start, ZlReports& reports, ZlReader::Options options)
    : _name(std::move(name)), _reports(reports), _options(std::move(options)),
      _areRotatedAdded(start._areRotatedAdded), _place(start._place),
      _isResumed(start._place.has_value())
{
}

ZlTail::~ZlTail() = default;

const ZlRecord& ZlTail::getRecord() const
{
    return _reader->getRecord();
}

std::int64_t ZlTail::getTime()
{
    _time = std::max(_time, getRecord()._wall.value_or(_time));
    return _time;
}

ZlPlace ZlTail::getPlace()
{
    const std::uint64_t offset = _reader->getOffset();
    const std::string_view head = std::string_view(_head).substr(0, offset);
    // From its largest size on, it is the same for all places.
    if (head.size() != _hashedSize) _hash = zlHashOf(head);
    _hashedSize = head.size();
    return {_identity, head.size(), _hash, offset};
}

void ZlTail::release(bool isAll)
{
    if (_reader) _reader->release(isAll);
}

void ZlTail::look()
{
    if (!_reader || !_isPresent) return;
    if (_file && _file->getSize() < _source->getSize())
    {
        _reports.note("\"" + _name + "\" was emptied: lines may be missing");
        _reader.reset();
        _hasRecord = false;
        _place = ZlPlace{_identity, 0, zlHashOf(""), 0};
        _isResumed = true;
        return;
    }
    ZlFile::Identity identity;
    if (ZlFile::find(_name, identity) && !(identity == _identity)) _isSuperseded = true;
}

bool ZlTail::next()
{
    while (!_hasRecord)
    {
        if (!_reader && !openNext()) return false;
        while (!_hasRecord && _reader->next()) _hasRecord = _reader->getOffset() > _known;
        if (_hasRecord) break;
        if (_isPresent && !_isSuperseded) return false;
        // A last line without its end comes before the next file.
        if (_isPresent && !_isDrained)
            _reader->release(true);
        else
            leave();
        _isDrained = true;
    }
    return true;
}

// The file was read to its end, and has a successor.
void ZlTail::leave()
{
    _place = ZlPlace{_identity, _head.size(), zlHashOf(_head), _reader->getOffset()};
    _isResumed = false;
    _reader.reset();
}

ZlTail::Files ZlTail::findFiles() const
{
    std::vector<std::string> names = ZlListing().findRotated(_name);
    names.push_back(_name);
    Files files;
    for (std::string& name : names)
        if (ZlFile::Identity identity; ZlFile::find(name, identity))
            files.emplace_back(std::move(name), identity);
    return files;
}

bool ZlTail::hasHead(const std::string& file) const
{
    try
    {
        const std::unique_ptr<ZlSource> source = zlOpenSource(file);
        std::string head(_place->_headSize, '\0');
        std::size_t size = 0;
        for (std::size_t count = 1; count > 0 && size < head.size(); size += count)
            count = source->read(head.data() + size, head.size() - size);
        return size == head.size() && zlHashOf(head) == _place->_head;
    }
    catch (const ZlError&)
    {
        return false;
    }
}

// The index of the file with the place. The identity alone would also be that of a file that was
// emptied, or of another one that has taken its number.
std::size_t ZlTail::locate(const Files& files) const
{
    for (std::size_t i = 0; i < files.size(); ++i)
        if (files[i].second == _place->_file && hasHead(files[i].first)) return i;
    for (std::size_t i = 0; _place->_headSize > 0 && i < files.size(); ++i)
        if (hasHead(files[i].first)) return i;
    return NONE;
}

void ZlTail::reportMissing()
{
    if (!_isMissingReported)
        _reports.note("\"" + _name +
                      "\": the file that was shipped last is not there any more, or was changed: "
                      "lines may be missing");
    _isMissingReported = true;
}

// False if there is none yet.
bool ZlTail::choose(const Files& files, std::size_t& index, std::uint64_t& offset)
{
    const bool isPresentThere = !files.empty() && files.back().first == _name;
    offset = 0;
    index = _areRotatedAdded ? 0 : files.size() - 1;
    if (!_place) return !files.empty() && (_areRotatedAdded || isPresentThere);
    if (files.empty()) return false;
    const std::size_t found = locate(files);
    if (found != NONE && _isResumed) offset = _place->_offset;
    index = found != NONE && !_isResumed ? found + 1 : found;
    if (found != NONE) return index < files.size();
    const auto isSame = [&](const auto& file) { return file.second == _place->_file; };
    const auto same = std::find_if(files.begin(), files.end(), isSame);
    // What was rotated is removed from the oldest one on, so all of these are later ones. But an
    // empty file is not known again when it was compressed, so that says nothing of the others.
    const std::size_t first = _place->_headSize > 0 ? 0 : files.size() - 1;
    index = same == files.end() ? first : static_cast<std::size_t>(same - files.begin());
    reportMissing();
    return true;
}

// Files may be renamed while they are looked at; then it looks again.
bool ZlTail::openNext()
{
    constexpr int ATTEMPTS = 100;
    for (int i = 0; i < ATTEMPTS; ++i)
    {
        const Files files = findFiles();
        std::size_t index = 0;
        std::uint64_t offset = 0;
        if (!choose(files, index, offset)) return false;
        const bool isOpen = open(files[index].first, files[index].second, offset);
        if (isOpen && findFiles() == files) return true;
        const bool isThere = ZlFile::find(files[index].first, _identity);
        _reader.reset();
        if (!isOpen && isThere) return false;
    }
    return false;
}

bool ZlTail::open(const std::string& file, const ZlFile::Identity& identity, std::uint64_t offset)
{
    try
    {
        _isPresent = file == _name;
        _file = std::make_unique<ZlFile>(file);
        if (!isPlain(*_file)) _file.reset();
        auto source = std::make_unique<HeadSource>(zlOpenSource(file), _head);
        _source = source.get();
        _reader = std::make_unique<ZlReader>(file, std::move(source), _reports, _options);
    }
    catch (const ZlError& error)
    {
        ZlFile::Identity present;
        const bool isThere = ZlFile::find(file, present);
        if (isThere && !_isFailureReported) _reports.failed(error.what());
        if (isThere) _isFailureReported = true;
        return false;
    }
    // It was emptied meanwhile, and begins as before.
    const bool isShorter = _file && _file->getSize() < offset;
    if (isShorter) reportMissing();
    if (_isPresent) _reader->setLive();
    _identity = identity;
    _known = isShorter ? 0 : offset;
    _hashedSize = 0;
    _hash = zlHashOf("");
    _isSuperseded = false;
    _isDrained = false;
    _isFailureReported = false;
    return true;
}

} // namespace Zu
