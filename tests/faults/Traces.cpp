#include "faults/Traces.h"

#include <algorithm>
#include <array>
#include <csignal>

#include "LogData.h"

namespace velka::testing {
namespace {

constexpr std::array kLogTraces = {
    "is not printed",        // a page, or the job to its end
    "is printed unturned",   //
    "is printed only once",  // its copies
    "the raster is not read to its end",
    "no page from the PDF",
    "no page count from the PDF",
    "PPM width: 0, height: 0",  // a page of the PDF that has no picture
};

constexpr std::array kErrorTraces = {
    "The PPD file could not be opened.",
    "cupsRasterOpen failed.",
    "WARNING: The job log /tmp/velka.log ",  // cannot be opened, or ends early
    "\nERROR: ",                             // of the copier
    "velkaview: ",
};

bool holds(const std::string& text, const char* part) {
  return text.find(part) != std::string::npos;
}

template <size_t kCount>
bool holdsOneOf(const std::string& text, const std::array<const char*, kCount>& parts) {
  return std::any_of(parts.begin(), parts.end(),
                     [&](const char* part) { return holds(text, part); });
}

bool startsWith(const std::string& text, const char* head) {
  return text.rfind(head, 0) == 0;
}

// What the log says of all options.
std::string toldOptions(const std::string& log) {
  std::string options;
  for (size_t at = 0; (at = log.find("Init ", at)) != std::string::npos; ++at)
    options += log.substr(at, log.find('\r', at) - at);
  return options;
}

}  // namespace

bool tellsOfLoss(const Trial& trial, const Trial& good) {
  return holdsOneOf(trial.log, kLogTraces) || holdsOneOf(trial.result.errors, kErrorTraces) ||
         toldOptions(trial.log) != toldOptions(good.log);
}

bool isRecordCrash(const FaultReport& report) {
  return report.signal == SIGSEGV && report.faultAddress == 0 &&
         report.lastSize == sizeof(LogData) && startsWith(report.caller.data(), "rastovelka") &&
         startsWith(report.faultIn.data(), "rastovelka");
}

bool isSanitizersOwn(const Trial& trial) {
  return startsWith(trial.report.caller.data(), "libasan") ||
         startsWith(trial.report.caller.data(), "libubsan") ||
         holds(trial.result.errors, "AddressSanitizer: CHECK failed");
}

bool isCupsCrash(const FaultReport& report) {
  return report.signal == SIGSEGV && startsWith(report.caller.data(), "libcups") &&
         startsWith(report.faultIn.data(), "libcups");
}

}  // namespace velka::testing
