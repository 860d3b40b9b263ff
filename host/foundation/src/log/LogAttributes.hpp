// Names of the record attributes that channels attach and sinks read.
#pragma once

namespace foundation::log::attribute {
inline constexpr const char* CHANNEL = "Channel";   // set by the channel logger
inline constexpr const char* SEVERITY = "Severity"; // set by the channel logger
inline constexpr const char* MESSAGE = "Message";   // the record's text
inline constexpr const char* SOURCE = "Source";
inline constexpr const char* LINE = "Line";
inline constexpr const char* DISPLAYED = "Displayed"; // present on the loggers of printed channels
} // namespace foundation::log::attribute
