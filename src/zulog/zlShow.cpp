#include "zulog/zlShow.h"

#include "zulog/zlFile.h"

#include <algorithm>
#include <utility>

namespace Zu
{

namespace
{

// Of all buffers together.
constexpr std::size_t MEMORY = std::size_t{8} << 20;
constexpr std::size_t LARGEST_BUFFER = std::size_t{256} << 10;

} // namespace

ZlPrinter::ZlPrinter(const ZlShowOptions& options, ZlOutput& output, ZlReports& reports)
    : _output(output), _filter(options._selection, reports),
      _format(zlMakeFormat(options._format, options._formatOptions)), _context(options._context)
{
    if (!_format) throw ZlError("\"" + options._format + "\" is no format");
}

void ZlPrinter::begin()
{
    _format->begin(_output.text());
}

void ZlPrinter::add(const ZlRecord& record)
{
    if (_isKeeping)
        keep(record);
    else if (_context > 0)
        addWithContext(record);
    else if (_filter.accepts(record))
        _format->append(_output.text(), record);
    _output.writeIfLarge();
}

void ZlPrinter::keepLast(std::size_t count)
{
    _isKeeping = true;
    _mostLast = count;
}

void ZlPrinter::keep(const ZlRecord& record)
{
    if (_mostLast == 0 || !_filter.accepts(record)) return;
    std::string text;
    if (_last.size() == _mostLast)
    {
        text.swap(_last.front());
        text.clear();
        _last.pop_front();
    }
    _format->append(text, record);
    _last.push_back(std::move(text));
}

void ZlPrinter::showLast()
{
    _isKeeping = false;
    for (const std::string& text : _last) _output.text() += text;
    _last.clear();
    flush();
}

void ZlPrinter::flush()
{
    _output.write();
}

void ZlPrinter::addWithContext(const ZlRecord& record)
{
    const bool isSelected = _filter.accepts(record);
    if (!isSelected && _behind == 0)
    {
        _before.emplace_back();
        _format->append(_before.back(), record);
        if (_before.size() <= _context) return;
        _before.pop_front();
        _isAnyLeftOut = true;
        return;
    }
    if (isSelected)
    {
        if (_isAnyShown && _isAnyLeftOut) _output.text() += "--\n";
        for (const std::string& text : _before) _output.text() += text;
        _before.clear();
        _isAnyLeftOut = false;
        _isAnyShown = true;
    }
    _behind = isSelected ? _context : _behind - 1;
    _format->append(_output.text(), record);
}

void ZlPrinter::end()
{
    _filter.report();
}

ZlReader::Options zlReaderOptions(const ZlShowOptions& options, std::size_t logs)
{
    ZlReader::Options reading;
    reading._bufferSize = std::min(LARGEST_BUFFER, MEMORY / std::max<std::size_t>(logs, 1));
    const bool areAllWanted =
        options._selection._levels == ZlSelection::ALL_LEVELS || options._context > 0;
    if (areAllWanted) return reading;
    reading._levels = options._selection._levels;
    reading._areMarksSkipped = true;
    return reading;
}

ZlMerge zlOpenMerge(const ZlShowOptions& options, ZlReports& reports)
{
    std::vector<ZlLog> logs = zlFindLogs(options._words, options._areRotatedAdded, reports);
    ZlReader::Options reading = zlReaderOptions(options, logs.size());
    reading._openFiles = zlMakeOpenFiles();
    std::vector<std::unique_ptr<ZlReader>> readers;
    readers.reserve(logs.size());
    for (ZlLog& log : logs)
        readers.push_back(std::make_unique<ZlReader>(std::move(log), reports, reading));
    return ZlMerge(std::move(readers));
}

void zlShow(const ZlShowOptions& options, ZlOutput& output, ZlReports& reports)
{
    ZlPrinter printer(options, output, reports);
    ZlMerge merge = zlOpenMerge(options, reports);
    printer.begin();
    while (const ZlRecord* const record = merge.next()) printer.add(*record);
    printer.end();
    output.write();
}

} // namespace Zu
