/// @file
/// The commands that show records: show and follow.

#ifndef ZU_ZULOG_ZLSHOW_H
#define ZU_ZULOG_ZLSHOW_H

#include "zlFilter.h"
#include "zlFormat.h"
#include "zlInputs.h"
#include "zlMerge.h"
#include "zlOutput.h"
#include "zlReports.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <vector>

namespace Zu
{

/// What is shown, and how.
struct ZlShowOptions
{
    std::vector<std::string> _words;
    bool _areRotatedAdded = false;
    std::string _format = "text";
    ZlFormatOptions _formatOptions;
    ZlSelection _selection;
    /// So many records in front of and behind each that is selected.
    std::size_t _context = 0;
};

/// Passes on the records that are selected, and their neighbours, as text. Not thread-safe.
class ZlPrinter
{
public:
    ZlPrinter(const ZlShowOptions& options, ZlOutput& output, ZlReports& reports);

    void begin();
    void add(const ZlRecord& record);
    /// From now on only the last `count` records that are selected are kept, until showLast() shows
    /// them. They have no neighbours.
    void keepLast(std::size_t count);
    void showLast();
    /// Hands what is shown to the system.
    void flush();
    /// Reports what was left out.
    void end();

private:
    void addWithContext(const ZlRecord& record);
    void keep(const ZlRecord& record);

    ZlOutput& _output;
    ZlFilter _filter;
    std::unique_ptr<ZlFormat> _format;
    const std::size_t _context;
    // The records in front of the next one, which were not shown.
    std::deque<std::string> _before;
    // So many are still to be shown behind the last one that was selected.
    std::size_t _behind = 0;
    bool _isAnyShown = false;
    bool _isAnyLeftOut = false;
    // The last records, and how many of them are kept.
    bool _isKeeping = false;
    std::size_t _mostLast = 0;
    std::deque<std::string> _last;
};

/// The options for reading that suit a selection and a number of logs.
ZlReader::Options zlReaderOptions(const ZlShowOptions& options, std::size_t logs);

/// All records of the logs that the words name, merged.
ZlMerge zlOpenMerge(const ZlShowOptions& options, ZlReports& reports);

/// Shows what is in the files. Raises ZlError for what can't be used or written.
void zlShow(const ZlShowOptions& options, ZlOutput& output, ZlReports& reports);

} // namespace Zu

#endif
