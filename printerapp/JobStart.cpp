#include "JobStart.h"

#include <pthread.h>

#include <algorithm>
#include <deque>
#include <mutex>
#include <set>
#include <utility>

#include "JobOrder.h"

namespace velka::app {
namespace {

constexpr size_t kRemembered = 256;

// Filled before the watch begins, which then takes from it.
std::set<int>& leftBehind() {
  static std::set<int> printers;
  return printers;
}

void noteIfJobsWait(pappl_printer_t* printer, void* /*data*/) {
  noteHeldBack(printer);
  if (papplPrinterGetNumberOfActiveJobs(printer) > 0)
    leftBehind().insert(papplPrinterGetID(printer));
}

bool isNew(pappl_job_t* job) {
  static std::mutex mutex;
  static std::deque<std::pair<int, int>> begun;
  const std::pair<int, int> id = {papplPrinterGetID(papplJobGetPrinter(job)), papplJobGetID(job)};
  const std::lock_guard lock(mutex);
  if (std::ranges::find(begun, id) != begun.end()) return false;
  begun.push_back(id);
  if (begun.size() > kRemembered) begun.pop_front();
  return true;
}

}  // namespace

void noteWaitingJobs(pappl_system_t* system) {
  papplSystemIteratePrinters(system, noteIfJobsWait, nullptr);
}

// The library loads the jobs of its last run, and begins none before another one comes.
void beginWaitingJobs(pappl_system_t* system) {
  for (const int id : leftBehind()) {
    pappl_printer_t* printer = papplSystemFindPrinter(system, nullptr, id, nullptr);
    if (printer == nullptr || papplPrinterGetState(printer) != IPP_PSTATE_IDLE) continue;
    holdBackAllButOldest(printer);
    papplPrinterResume(printer);
  }
  leftBehind().clear();
}

// Two threads that look for a job at the same moment find the same one, and both start it.
// The second must not reach the library's end of a job, which would take the device away from
// the first and the job into the history twice. Unless it comes so late that it has made a
// job that is over one in progress: then that end is what it needs.
bool isFirstToPrint(pappl_job_t* job) {
  if (isNew(job)) return true;
  const bool late =
      papplJobGetTimeCompleted(job) != 0 && papplJobGetState(job) == IPP_JSTATE_PROCESSING;
  papplLogJob(job, PAPPL_LOGLEVEL_DEBUG, "The job was begun twice; it is printed once.");
  if (!late) pthread_exit(nullptr);
  return false;
}

}  // namespace velka::app
