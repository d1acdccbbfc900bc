#include "JobOrder.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <string_view>
#include <utility>
#include <vector>

namespace velka::app {
namespace {

// A word of IPP's for a job that nobody wants to be held; it is saved with the job.
constexpr const char* kMark = "no-hold";
constexpr int kRounds = 2;

struct HeldBack {
  std::vector<int> jobs;
  int rounds = 0;
};

std::mutex& guard() {
  static std::mutex mutex;
  return mutex;
}

// By the printers' numbers.
std::map<int, HeldBack>& heldBack() {
  static std::map<int, HeldBack> all;
  return all;
}

void add(pappl_printer_t* printer, int job) {
  const std::lock_guard lock(guard());
  heldBack()[papplPrinterGetID(printer)].jobs.push_back(job);
}

HeldBack take(pappl_printer_t* printer) {
  const std::lock_guard lock(guard());
  const auto found = heldBack().find(papplPrinterGetID(printer));
  if (found == heldBack().end()) return {};
  HeldBack taken = std::move(found->second);
  heldBack().erase(found);
  return taken;
}

std::vector<int> forgotten() {
  std::vector<int> printers;
  const std::lock_guard lock(guard());
  for (auto& [printer, held] : heldBack()) {
    if (++held.rounds > kRounds) printers.push_back(printer);
  }
  return printers;
}

void noteWaiting(pappl_job_t* job, void* numbers) {
  if (papplJobGetState(job) == IPP_JSTATE_PENDING)
    static_cast<std::vector<int>*>(numbers)->push_back(papplJobGetID(job));
}

void noteMarked(pappl_job_t* job, void* /*data*/) {
  ipp_attribute_t* until = papplJobGetAttribute(job, "job-hold-until");
  const char* value = until == nullptr ? nullptr : ippGetString(until, 0, nullptr);
  if (papplJobGetState(job) == IPP_JSTATE_HELD && value != nullptr &&
      std::string_view(value) == kMark)
    add(papplJobGetPrinter(job), papplJobGetID(job));
}

}  // namespace

void holdBackAllButOldest(pappl_printer_t* printer) {
  std::vector<int> waiting;
  papplPrinterIterateActiveJobs(printer, noteWaiting, &waiting, 1, 0);
  const auto oldest = std::ranges::min_element(waiting);
  for (const int number : waiting) {
    pappl_job_t* job = number == *oldest ? nullptr : papplPrinterFindJob(printer, number);
    if (job != nullptr && papplJobHold(job, nullptr, kMark, 0)) add(printer, number);
  }
}

void letAllWait(pappl_printer_t* printer) {
  for (const int number : take(printer).jobs) {
    pappl_job_t* job = papplPrinterFindJob(printer, number);
    if (job != nullptr) papplJobRelease(job, nullptr);
  }
}

void letForgottenWait(pappl_system_t* system) {
  for (const int number : forgotten()) {
    pappl_printer_t* printer = papplSystemFindPrinter(system, nullptr, number, nullptr);
    if (printer != nullptr) letAllWait(printer);
  }
}

void noteHeldBack(pappl_printer_t* printer) {
  if (!papplPrinterIsHoldingNewJobs(printer))
    papplPrinterIterateActiveJobs(printer, noteMarked, nullptr, 1, 0);
}

}  // namespace velka::app
