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

// Up to so many bytes of a ZlFile or ZlSource; fewer at the end.
template <typename Source> std::string readUpTo(Source& source, std::size_t most)
{
    std::string text(most, '\0');
    std::size_t size = 0;
    for (std::size_t count = 1; count > 0 && size < most; size += count)
        count = source.read(text.data() + size, most - size);
    text.resize(size);
    return text;
}

// False if there are fewer bytes.
bool skip(ZlSource& source, std::uint64_t count)
{
    constexpr std::uint64_t PART = std::uint64_t{64} * 1024;
    while (count > 0)
    {
        const std::size_t part = static_cast<std::size_t>(std::min(count, PART));
        if (readUpTo(source, part).size() < part) return false;
        count -= part;
    }
    return true;
}

std::size_t lastSizeOf(std::uint64_t offset)
{
    return static_cast<std::size_t>(std::min(offset, ZlPlace::LARGEST_LAST));
}

// Whether the bytes in front of the place are still there. In a plain file nothing else is read.
bool hasLast(const std::string& name, const ZlPlace& place)
{
    const std::size_t size = lastSizeOf(place._offset);
    const std::uint64_t begin = place._offset - size;
    ZlFile file(name);
    if (!isPlain(file))
    {
        const std::unique_ptr<ZlSource> source = zlOpenSource(name);
        return skip(*source, begin) && zlHashOf(readUpTo(*source, size)) == place._last;
    }
    file.seek(begin);
    return zlHashOf(readUpTo(file, size)) == place._last;
}

} // namespace

// The first bytes of a file that were read, and the latest ones. They outlive the reader's source,
// which is closed at the end of the file.
class ZlTail::Kept
{
public:
    explicit Kept(std::string& head) : _head(head)
    {
        _head.clear();
    }

    void add(std::string_view more)
    {
        _head += more.substr(0, ZlPlace::LARGEST_HEAD - _head.size());
        const std::uint64_t begin = _size - _latest.size();
        _size += more.size();
        const std::uint64_t first = std::max(_needed, _size - std::min(_size, MOST_KEPT));
        if (first > begin) _latest.erase(0, static_cast<std::size_t>(first - begin));
        _latest += more;
    }

    // No place in front of this one is asked for any more.
    void forget(std::uint64_t offset)
    {
        _needed = offset - lastSizeOf(offset);
    }

    // Nothing if these bytes are not kept any more.
    std::optional<std::uint64_t> getLast(std::uint64_t offset) const
    {
        const std::size_t size = lastSizeOf(offset);
        const std::uint64_t begin = _size - _latest.size();
        if (offset > _size || offset - size < begin) return std::nullopt;
        const std::size_t index = static_cast<std::size_t>(offset - size - begin);
        return zlHashOf(std::string_view(_latest).substr(index, size));
    }

    std::uint64_t getSize() const
    {
        return _size;
    }

private:
    // More than a batch is, and than the reader reads ahead, which is the longest line at most.
    static constexpr std::uint64_t MOST_KEPT = 2 * ZlReader::LONGEST;

    std::string& _head;
    std::uint64_t _size = 0;
    // Up to the present size.
    std::string _latest;
    std::uint64_t _needed = 0;
};

// Keeps what passes.
class ZlTail::KeepingSource : public ZlSource
{
public:
    KeepingSource(std::unique_ptr<ZlSource> source, Kept& kept)
        : _source(std::move(source)), _kept(kept)
    {
    }

    std::size_t read(char* place, std::size_t size) override
    {
        const std::size_t count = _source->read(place, size);
        if (count > 0) _kept.add(std::string_view(place, count));
        return count;
    }

private:
    const std::unique_ptr<ZlSource> _source;
    Kept& _kept;
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
    return {_identity, head.size(), _hash, offset, std::nullopt};
}

void ZlTail::complete(ZlPlace& place) const
{
    if (_reader && place._file == _identity)
        place._last = _kept->getLast(place._offset);
    else if (_left && place._file == _left->_file && place._offset == _left->_offset)
        place._last = _left->_last;
}

void ZlTail::release(bool isAll)
{
    if (_reader) _reader->release(isAll);
}

// Also where more was written since than there was before: then the bytes in front of the old end
// are others.
bool ZlTail::wasEmptied() const
{
    if (!_file) return false;
    const std::uint64_t size = _file->getSize();
    const std::uint64_t known = _kept->getSize();
    if (size <= known) return size < known;
    const std::optional<std::uint64_t> last = _kept->getLast(known);
    if (!last) return false;
    _file->seek(known - lastSizeOf(known));
    return zlHashOf(readUpTo(*_file, lastSizeOf(known))) != *last;
}

void ZlTail::look()
{
    if (_reader) _kept->forget(_reader->getOffset());
    if (!_reader || !_isPresent) return;
    if (wasEmptied())
    {
        _reports.note("\"" + _name + "\" was emptied: lines may be missing");
        _reader.reset();
        _hasRecord = false;
        _place = ZlPlace{_identity, 0, zlHashOf(""), 0, std::nullopt};
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
        while (!_hasRecord && _reader->next())
        {
            _hasRecord = _reader->getOffset() > _known;
            if (!_hasRecord) _kept->forget(_reader->getOffset());
        }
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
    const std::uint64_t offset = _reader->getOffset();
    _place = ZlPlace{_identity, _head.size(), zlHashOf(_head), offset, _kept->getLast(offset)};
    // An empty file has no places, so the one in front of it counts.
    if (offset > 0) _left = _place;
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

// What was written anew behind the same head has other bytes in front of the place. That is of no
// interest where the file was read to its end.
bool ZlTail::hasPlace(const std::string& file) const
{
    try
    {
        const std::unique_ptr<ZlSource> source = zlOpenSource(file);
        const std::string head = readUpTo(*source, _place->_headSize);
        if (head.size() < _place->_headSize || zlHashOf(head) != _place->_head) return false;
        return !_isResumed || !_place->_last || hasLast(file, *_place);
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
        if (files[i].second == _place->_file && hasPlace(files[i].first)) return i;
    for (std::size_t i = 0; _place->_headSize > 0 && i < files.size(); ++i)
        if (hasPlace(files[i].first)) return i;
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
        auto source = zlOpenSource(file);
        // The former reader refers to what is replaced here.
        _reader.reset();
        _kept = std::make_unique<Kept>(_head);
        source = std::make_unique<KeepingSource>(std::move(source), *_kept);
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
