#include "Chain.h"

#include <cups/cups.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <string_view>

#include "ChainTools.h"
#include "Files.h"
#include "Process.h"
#include "Progress.h"
#include "RasterPages.h"
#include "WorkFolder.h"

namespace velka::view {
namespace {

namespace fs = std::filesystem;

// Options as the print system splits them.
class Options {
 public:
  explicit Options(const std::string& text) : count_(cupsParseOptions(text.c_str(), 0, &all_)) {}
  ~Options() { cupsFreeOptions(count_, all_); }
  Options(const Options&) = delete;
  Options& operator=(const Options&) = delete;

  // Empty where it is not stated.
  [[nodiscard]] std::string valueOf(const char* name) const {
    const char* value = cupsGetOption(name, count_, all_);
    return value == nullptr ? "" : value;
  }

 private:
  cups_option_t* all_ = nullptr;
  int count_ = 0;
};

// What pages on paper of their final size still need to be told, so that choosing some
// of them changes nothing else.
std::string paperOptions(const std::string& text) {
  constexpr std::array kPaper{"PageSize", "PageRegion", "media"};
  const Options options(text);
  std::string paper;
  for (const char* name : kPaper) {
    const std::string value = options.valueOf(name);
    if (!value.empty()) paper.append(name).append("=").append(value).append(" ");
  }
  return paper;
}

std::string rangeText(const PageRange& pages) {
  constexpr uint64_t kLast = 999'999'999;
  return std::to_string(std::min(pages.first, kLast)) + "-" +
         std::to_string(std::min(pages.last, kLast));
}

// What the document must be where that filter is the first; some filters look at it.
std::string typeBefore(const std::string& filter) {
  if (filter == "texttopdf") return "text/plain";
  if (filter == "gstopdf") return "application/postscript";
  return filter.starts_with("image") ? "image/png" : "application/pdf";
}

}  // namespace

Problem Chain::makeRaster(const Unwanted& unwanted) {
  unwanted_ = unwanted;
  if (!folder_.trouble().empty()) return "no temporary folder: " + folder_.trouble();
  if (job_.pdfPreprocess) {
    if (auto problem = missingPdfTool()) return problem;
  }
  if (auto problem = tools_.find()) return problem;
  if (auto problem = layOutDocument()) return problem;
  if (auto problem = runWay()) return problem;
  if (auto problem = chooseFromRaster()) return problem;
  raster_ = now_;
  return std::nullopt;
}

Problem Chain::print(const std::string& options, Printed& printed, const Unwanted& unwanted) {
  unwanted_ = unwanted;
  now_ = raster_;
  if (!copyFrom_.empty()) {
    if (auto problem = copy_.make(copyFrom_)) return problem;
    ending_ = SIGTERM;  // it removes the pictures of its pages
  }
  if (auto problem = step(tools_.ownFilter(), options, "commands")) return problem;
  printed.pagesChosen = chosen_;
  return readFile(now_, printed.stream);
}

// In a folder of its own, as it may have any name.
Problem Chain::layOutDocument() {
  std::error_code error;
  fs::create_directory(folder_.path() / "document", error);
  now_ = folder_.path() / "document" / job_.name;
  bool made = false;
  if (auto problem = writeNew(now_, job_.document, made)) return problem;
  const std::string type = Options(job_.options).valueOf("document-format");
  if (auto problem = tools_.findWay(now_, type, way_)) return problem;
  if (!way_.empty()) type_ = typeBefore(way_.front());
  for (const std::string& filter : way_) {
    if (auto problem = tools_.missing(filter)) return problem;
  }
  return std::nullopt;
}

Problem Chain::runWay() {
  for (size_t i = 0; i < way_.size(); ++i) {
    if (i + 1 == way_.size() && job_.pdfPreprocess) {
      if (auto problem = findCopy(way_[i])) return problem;
    }
    const std::string output = "step-" + std::to_string(i);
    if (auto problem = step(tools_.pathOf(way_[i]), job_.options, output)) return problem;
    if (way_[i] != "pdftopdf" || !job_.pages || chosen_) continue;
    if (auto problem = chooseFromPdf(output + "-pages")) return problem;
  }
  return std::nullopt;
}

// Of the pages as they are printed, so behind whatever the options do with them.
Problem Chain::chooseFromPdf(const std::string& output) {
  const std::string options = paperOptions(job_.options) + "page-ranges=" + rangeText(*job_.pages);
  if (auto problem = step(tools_.pathOf("pdftopdf"), options, output, true)) return problem;
  chosen_ = true;
  std::error_code error;
  if (fs::file_size(now_, error) > 0 || error) return std::nullopt;
  return noSuchPage("fewer pages");
}

Problem Chain::chooseFromRaster() {
  if (!job_.pages || chosen_ || job_.pdfPreprocess) return std::nullopt;
  uint64_t pages = 0;
  const std::string output = folder_ / "pages";
  if (auto problem = keepPages(now_, *job_.pages, output, pages)) return problem;
  now_ = output;
  chosen_ = true;
  if (pages >= job_.pages->first) return std::nullopt;
  return noSuchPage(std::to_string(pages));
}

Problem Chain::noSuchPage(const std::string& pages) const {
  return "there is no page " + std::to_string(job_.pages->first) +
         "; the document as it is printed has " + pages;
}

// Of what the last filter gets; a picture is made a PDF for it.
Problem Chain::findCopy(const std::string& last) {
  copyFrom_ = now_;
  if (last == "gziptoany") copyFrom_.clear();  // a raster has no PDF
  if (last != "imagetoraster") return std::nullopt;
  const std::string picture = now_;
  if (auto problem = tools_.missing("imagetopdf")) return problem;
  if (auto problem = step(tools_.pathOf("imagetopdf"), job_.options, "copy")) return problem;
  copyFrom_ = std::exchange(now_, picture);
  return std::nullopt;
}

Problem Chain::step(const std::string& program, const std::string& options,
                    const std::string& output, bool mayBeSilent) {
  Step step;
  step.program = program;
  step.arguments = {folder_.id(), "velkaview", job_.name, "1", options};
  // Numbers with a point and messages in our language, whoever looks at them.
  step.environment = {{"PPD", fs::absolute(job_.ppd)},
                      {"CONTENT_TYPE", type_},
                      {"FINAL_CONTENT_TYPE", "application/vnd.cups-raster"},
                      {"CUPS_SERVERBIN", tools_.serverFolder()},
                      {"CHARSET", "utf-8"},
                      {"LC_ALL", "C.UTF-8"},
                      {"TMPDIR", folder_.path()}};
  step.input = now_;
  step.output = folder_ / output;
  step.errors = folder_ / "errors";
  step.mayBeSilent = mayBeSilent;
  step.unwanted = unwanted_;
  step.ending = ending_;
  if (!job_.quiet) tellStep(fs::path(program).filename());
  now_ = step.output;
  return runStep(step, held_);
}

Problem runChain(const ChainJob& job, Printed& printed) {
  const SignalsHeld held;  // until everything is removed
  Chain chain(job, held);
  if (auto problem = chain.makeRaster()) return problem;
  return chain.print(job.options, printed);
}

}  // namespace velka::view
