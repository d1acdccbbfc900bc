// A job of the library's as a job of the printing filter.
#pragma once

#include <pappl/pappl.h>

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "DeviceOutput.h"
#include "FilterRun.h"
#include "JobOptions.h"
#include "Model.h"

namespace velka::app {

class PrintJob {
 public:
  /// All stay the library's. `copies` is what the filter makes of each page by itself.
  PrintJob(pappl_job_t* job, pappl_pr_options_t* options, pappl_device_t* device, unsigned copies);

  /// `id` tells the filter's files apart. Each of these is false where the job is to be
  /// aborted, and says why in its message.
  [[nodiscard]] bool start(const std::string& id, bool pdfCopy);
  [[nodiscard]] bool startPage(const cups_page_header2_t& page);
  [[nodiscard]] bool writeLine(std::span<const uint8_t> line);
  [[nodiscard]] bool endPage();
  [[nodiscard]] bool end();

  /// Sets the job's message and logs it; false.
  bool fail(const std::string& message);

 private:
  bool complete();
  void endIfCancelled();
  bool failOrCancel();

  pappl_job_t* job_;
  pappl_pr_options_t* options_;
  const Model* model_;
  unsigned copies_;
  int pages_ = 0;
  bool cancelled_ = false;
  bool failed_ = false;
  DeviceOutput output_;
  FilterRun filter_;
  cups_page_header2_t page_ = {};
  std::vector<uint8_t> line_;
};

/// What a job chose, and its printer's defaults where it says nothing.
[[nodiscard]] JobChoices choicesOf(pappl_job_t* job, const pappl_pr_options_t& options);

/// A name for the filter's files that no other job has: of letters, digits and dashes.
[[nodiscard]] std::string filterJobId(pappl_job_t* job);

/// The model of a job's printer; null where its driver is none of ours.
[[nodiscard]] const Model* modelOf(pappl_job_t* job);

/// Puts the callbacks for raster into a driver's data.
void setRasterCallbacks(pappl_pr_driver_data_t& data);

}  // namespace velka::app
