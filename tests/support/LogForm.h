// The form of the job log's lines.
#pragma once

#include <regex.h>

#include <string>

namespace velka::testing {

/// Whether a line without its LF has the fixed form: date, time, thread, level, message,
/// file of the statement, CR.
inline bool isLogLine(const std::string& line) {
  static const regex_t form = [] {
    regex_t compiled = {};
    regcomp(&compiled,
            "^[0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{3} \\[[0-9]{4,}\\] "
            "(LOG_DEBUG|LOG_ALARM) .* "
            "(rastovelka|InitalizeOemCfg|PreInc|ESCPSML|log4z)\\.cpp:[0-9]+\r$",
            REG_EXTENDED | REG_NOSUB);
    return compiled;
  }();
  return regexec(&form, line.c_str(), 0, nullptr, 0) == 0;
}

/// The first line that lacks the form or its end; empty where all are whole.
inline std::string tornLine(const std::string& log) {
  for (size_t at = 0; at < log.size();) {
    const size_t end = log.find('\n', at);
    std::string line = log.substr(at, end - at);
    if (end == std::string::npos || !isLogLine(line)) return line;
    at = end + 1;
  }
  return "";
}

}  // namespace velka::testing
