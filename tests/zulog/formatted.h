// Logs in one of the formats.

#ifndef ZU_TESTS_ZULOG_FORMATTED_H
#define ZU_TESTS_ZULOG_FORMATTED_H

#include "logTexts.h"
#include "zulog/zlFormat.h"
#include "zulog/zlReader.h"
#include "zulog/zlReports.h"

#include <memory>
#include <sstream>
#include <string>

// The records of the log "a b.log".
inline std::string formattedBy(Zu::ZlFormat& format, const std::string& log)
{
    std::ostringstream reported;
    Zu::ZlReports reports(reported);
    Zu::ZlReader reader("a b.log", std::make_unique<logTexts::TextSource>(log), reports, {});
    std::string out;
    format.begin(out);
    while (reader.next()) format.append(out, reader.getRecord());
    return out;
}

inline Zu::ZlFormatOptions utc()
{
    Zu::ZlFormatOptions options;
    options._times = Zu::ZlFormatOptions::Times::Utc;
    return options;
}

#endif
