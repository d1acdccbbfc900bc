#include "PrintJob.h"

#include <unistd.h>

#include "JobOptions.h"
#include "JobOrder.h"
#include "Limits.h"
#include "PageRaster.h"
#include "Programs.h"

namespace velka::app {
namespace {

constexpr pappl_color_mode_t kMonochrome =
    PAPPL_COLOR_MODE_MONOCHROME | PAPPL_COLOR_MODE_AUTO_MONOCHROME |
    PAPPL_COLOR_MODE_PROCESS_MONOCHROME | PAPPL_COLOR_MODE_BI_LEVEL;

// The library hands over what a job states; what its printer's web page says is asked for.
void addDefaults(pappl_job_t* job, const Model& model, JobChoices& choices) {
  ipp_t* attributes = papplPrinterGetDriverAttributes(papplJobGetPrinter(job));
  for (const VendorOption& option : model.options) {
    ipp_attribute_t* found =
        ippFindAttribute(attributes, (option.name + "-default").c_str(), IPP_TAG_ZERO);
    const char* value = found == nullptr ? nullptr : ippGetString(found, 0, nullptr);
    if (value != nullptr) choices.vendor[option.name] = value;
  }
  ippDelete(attributes);
}

}  // namespace

JobChoices choicesOf(pappl_job_t* job, const pappl_pr_options_t& options) {
  JobChoices choices;
  if (const Model* model = modelOf(job)) addDefaults(job, *model, choices);
  for (const cups_option_t& option :
       std::span(options.vendor, static_cast<size_t>(options.num_vendor)))
    choices.vendor[option.name] = option.value;
  choices.inkStated = papplJobGetAttribute(job, "OutputColorType") != nullptr;
  choices.monochrome = (options.print_color_mode & kMonochrome) != 0;
  return choices;
}

std::string filterJobId(pappl_job_t* job) {
  return "app-" + std::to_string(getpid()) + "-" +
         std::to_string(papplPrinterGetID(papplJobGetPrinter(job))) + "-" +
         std::to_string(papplJobGetID(job));
}

const Model* modelOf(pappl_job_t* job) {
  const char* driver = papplPrinterGetDriverName(papplJobGetPrinter(job));
  return driver == nullptr ? nullptr : modelOf(driver);
}

PrintJob::PrintJob(pappl_job_t* job, pappl_pr_options_t* options, pappl_device_t* device,
                   unsigned copies)
    : job_(job),
      options_(options),
      model_(modelOf(job)),
      copies_(copies),
      output_(job, device),
      filter_([this](std::span<const uint8_t> bytes) { return output_.write(bytes); },
              [job](const std::string& line) {
                papplLogJob(job, PAPPL_LOGLEVEL_INFO, "rastovelka: %s", line.c_str());
              }) {}

bool PrintJob::fail(const std::string& message) {
  if (failed_) return false;
  failed_ = true;
  papplJobSetMessage(job_, "%s", message.c_str());
  papplLogJob(job_, PAPPL_LOGLEVEL_ERROR, "%s", message.c_str());
  papplJobSetReasons(job_, PAPPL_JREASON_ABORTED_BY_SYSTEM | PAPPL_JREASON_ERRORS_DETECTED,
                     PAPPL_JREASON_NONE);
  return false;
}

bool PrintJob::start(const std::string& id, bool pdfCopy) {
  letAllWait(papplJobGetPrinter(job_));
  if (model_ == nullptr) return fail("the printer's driver is none of this application");
  const std::string filter = findFilter();
  if (filter.empty()) return fail("rastovelka is missing, and nothing prints without it");
  if (!output_.open()) return failOrCancel() || fail("the printer was not reached");
  FilterJob filterJob{filter, id,         papplJobGetUsername(job_), papplJobGetName(job_),
                      "",     model_->ppd};
  JobChoices choices = choicesOf(job_, *options_);
  choices.pdfCopy = pdfCopy;
  filterJob.options = filterOptions(*model_, choices);
  papplLogJob(job_, PAPPL_LOGLEVEL_DEBUG, "rastovelka gets %s", filterJob.options.c_str());
  const std::string trouble = filter_.start(filterJob);
  return trouble.empty() || fail(trouble);
}

void PrintJob::endIfCancelled() {
  if (cancelled_ || !papplJobIsCanceled(job_)) return;
  cancelled_ = true;
  filter_.cancel();
}

// What ends a cancelled job is no failure.
bool PrintJob::failOrCancel() {
  endIfCancelled();
  return cancelled_;
}

bool PrintJob::startPage(const cups_page_header2_t& page) {
  if (failOrCancel()) return true;
  if (++pages_ > limits.pages)
    return fail("the job has more than " + std::to_string(limits.pages) +
                " pages, the most that a job may have");
  const uint64_t dots = uint64_t{page.cupsWidth} * page.cupsHeight;
  if (dots > limits.dots)
    return fail("page " + std::to_string(pages_) + " has " + std::to_string(dots) + " dots, and " +
                std::to_string(limits.dots) + " are the most that a page may have");
  const auto header = filterHeader(page, copies_);
  if (!header) return fail("page " + std::to_string(pages_) + " is of a kind that does not print");
  page_ = page;
  line_.resize(header->cupsBytesPerLine);
  return filter_.startPage(*header) || failOrCancel();
}

bool PrintJob::writeLine(std::span<const uint8_t> line) {
  if (failOrCancel()) return true;
  toRgb(page_, line, line_);
  return filter_.writeLine(line_) || failOrCancel();
}

bool PrintJob::endPage() {
  if (failOrCancel()) return true;
  if (!filter_.endPage()) return failOrCancel();
  papplJobSetImpressionsCompleted(job_, static_cast<int>(copies_));
  return true;
}

bool PrintJob::end() {
  const bool done = complete();
  holdBackAllButOldest(papplJobGetPrinter(job_));
  return done;
}

bool PrintJob::complete() {
  endIfCancelled();
  const std::string how = filter_.finish();
  const bool printed = output_.flush();
  endIfCancelled();
  if (cancelled_ || failed_) return cancelled_;
  if (!how.empty()) return fail("rastovelka " + how);
  return printed || fail("the connection to the printer was lost");
}

}  // namespace velka::app
