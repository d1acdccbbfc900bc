#include "Watch.h"

#include <chrono>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

#include "DeviceOutput.h"
#include "JobOrder.h"
#include "JobStart.h"

namespace velka::app {
namespace {

constexpr auto kInterval = std::chrono::seconds(1);

struct Round {
  std::mutex mutex;
  bool last = false;
};

Round& round() {
  static Round one;
  return one;
}

void notePrinter(pappl_printer_t* /*printer*/, void* any) {
  *static_cast<bool*>(any) = true;
}

void noteStopped(pappl_printer_t* printer, void* ids) {
  if (papplPrinterGetState(printer) == IPP_PSTATE_STOPPED)
    static_cast<std::vector<int>*>(ids)->push_back(papplPrinterGetID(printer));
}

void noteProcessing(pappl_job_t* job, void* found) {
  if (papplJobGetState(job) == IPP_JSTATE_PROCESSING) *static_cast<bool*>(found) = true;
}

// The library itself waits for a printer that cannot be reached when a job begins, and calls
// it stopped meanwhile.
void noteUnreachable(pappl_printer_t* printer) {
  bool begun = false;
  papplPrinterIterateActiveJobs(printer, noteProcessing, &begun, 1, 0);
  if (begun && papplPrinterGetState(printer) == IPP_PSTATE_STOPPED)
    papplPrinterSetReasons(printer, PAPPL_PREASON_OFFLINE, PAPPL_PREASON_NONE);
}

// The system's lock is free again before any printer is waited for.
void look(pappl_system_t* system) {
  std::vector<int> stopped;
  beginWaitingJobs(system);
  papplSystemIteratePrinters(system, noteStopped, &stopped);
  for (const int id : stopped) {
    pappl_printer_t* printer = papplSystemFindPrinter(system, nullptr, id, nullptr);
    if (printer != nullptr) noteUnreachable(printer);
  }
  noteStuckPrinters();
  letForgottenWait(system);
}

bool lookOnce(pappl_system_t* system) {
  const std::lock_guard lock(round().mutex);
  if (round().last || !papplSystemIsRunning(system)) return false;
  try {
    look(system);
  } catch (const std::exception& e) {
    papplLog(system, PAPPL_LOGLEVEL_ERROR, "The printers cannot be looked at: %s", e.what());
  }
  return true;
}

void watch(pappl_system_t* system) {
  while (lookOnce(system)) std::this_thread::sleep_for(kInterval);
}

}  // namespace

// Not before there is a printer, whose end tells of the end of all. A watch that cannot begin
// for want of memory is tried again.
bool keepWatch(pappl_system_t* system, void* /*data*/) {
  static bool begun = false;
  bool any = false;
  if (!begun) papplSystemIteratePrinters(system, notePrinter, &any);
  try {
    if (any) std::thread(watch, system).detach();
    begun = begun || any;
  } catch (const std::system_error& e) {
    papplLog(system, PAPPL_LOGLEVEL_ERROR, "The printers cannot be watched: %s", e.what());
  }
  return true;
}

void endWatch(pappl_printer_t* printer, pappl_pr_driver_data_t* /*data*/) {
  if (papplSystemIsRunning(papplPrinterGetSystem(printer))) return;
  const std::lock_guard lock(round().mutex);
  round().last = true;
}

}  // namespace velka::app
