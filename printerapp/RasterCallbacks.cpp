// The library hands pages over line by line. Its calls are those of a C library, so no
// exception leaves them.
#include <exception>
#include <memory>
#include <new>

#include "JobStart.h"
#include "PrintJob.h"

namespace velka::app {
namespace {

PrintJob* printJob(pappl_job_t* job) {
  return static_cast<PrintJob*>(papplJobGetData(job));
}

// Ends a job that cannot go on. What the filter makes of what it has got is printed.
bool giveUp(pappl_job_t* job) {
  const std::unique_ptr<PrintJob> print(printJob(job));
  papplJobSetData(job, nullptr);
  if (print != nullptr) (void)print->end();
  return false;
}

template <typename Step>
bool attempt(pappl_job_t* job, Step step) noexcept {
  try {
    if (printJob(job) != nullptr && step(*printJob(job))) return true;
    return giveUp(job);
  } catch (const std::exception& e) {
    papplLogJob(job, PAPPL_LOGLEVEL_ERROR, "The job cannot go on: %s", e.what());
    return false;
  }
}

bool startJob(pappl_job_t* job, pappl_pr_options_t* options, pappl_device_t* device) {
  if (!isFirstToPrint(job)) return false;
  // The library repeats the pages of its own formats for copies.
  papplJobSetData(job, new (std::nothrow) PrintJob(job, options, device, 1));
  return attempt(job, [&](PrintJob& print) { return print.start(filterJobId(job), false); });
}

bool startPage(pappl_job_t* job, pappl_pr_options_t* options, pappl_device_t* /*device*/,
               unsigned /*page*/) {
  return attempt(job, [&](PrintJob& print) { return print.startPage(options->header); });
}

bool writeLine(pappl_job_t* job, pappl_pr_options_t* options, pappl_device_t* /*device*/,
               unsigned /*y*/, const unsigned char* line) {
  return attempt(job, [&](PrintJob& print) {
    return print.writeLine({line, options->header.cupsBytesPerLine});
  });
}

bool endPage(pappl_job_t* job, pappl_pr_options_t* /*options*/, pappl_device_t* /*device*/,
             unsigned /*page*/) {
  return attempt(job, [](PrintJob& print) { return print.endPage(); });
}

bool endJob(pappl_job_t* job, pappl_pr_options_t* /*options*/, pappl_device_t* /*device*/) {
  try {
    const std::unique_ptr<PrintJob> print(printJob(job));
    papplJobSetData(job, nullptr);
    return print != nullptr && print->end();
  } catch (const std::exception& e) {
    papplLogJob(job, PAPPL_LOGLEVEL_ERROR, "The job cannot end: %s", e.what());
    return false;
  }
}

}  // namespace

void setRasterCallbacks(pappl_pr_driver_data_t& data) {
  data.rstartjob_cb = startJob;
  data.rstartpage_cb = startPage;
  data.rwriteline_cb = writeLine;
  data.rendpage_cb = endPage;
  data.rendjob_cb = endJob;
}

}  // namespace velka::app
