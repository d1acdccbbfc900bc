#include "faults/FaultyJob.h"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <iterator>

#include "pdfcopy/CopyFixture.h"
#include "support/RasterBuilder.h"

namespace velka::testing {
namespace {

namespace fs = std::filesystem;

#ifdef VELKA_SANITIZED
constexpr unsigned kMostSeconds = 60;
#else
constexpr unsigned kMostSeconds = 10;
#endif

// Of a sanitizer: the shim may stand in front of it, a report has a status of its own, and
// what libcups forgets where its memory runs out is not looked for.
constexpr const char* kSanitizerOptions =
    "verify_asan_link_order=0:detect_leaks=0:allocator_may_return_null=1:exitcode=99";

const char* programOf(FaultyJob::Kind kind) {
  if (kind <= FaultyJob::Kind::PdfPage) return VELKA_FILTER;
  if (kind == FaultyJob::Kind::Guard) return VELKA_GUARD;
  return kind == FaultyJob::Kind::View ? VELKA_VIEW : VELKA_PDFCOPY;
}

Bytes twoPages(unsigned copies) {
  cups_page_header2_t header = rgbHeader(96, 60);
  header.NumCopies = copies;
  header.Collate = copies > 1 ? CUPS_TRUE : CUPS_FALSE;
  return rasterStream({inkedPage(header, 1), inkedPage(header, 2)});
}

FaultReport readReport(const std::string& path) {
  FaultReport report;
  std::ifstream(path, std::ios::binary).read(reinterpret_cast<char*>(&report), sizeof report);
  return report;
}

}  // namespace

std::vector<std::string> namesInTmp() {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator("/tmp")) names.push_back(entry.path().filename());
  std::sort(names.begin(), names.end());
  return names;
}

FaultyJob::FaultyJob(Kind kind) : kind_(kind), program_(programOf(kind)) {
  program_ = fs::canonical(program_);
  switch (kind) {
    case Kind::Standard:
    case Kind::Guard:
      makeRasterJob(1, {});
      break;
    case Kind::Orlo:
      makeRasterJob(2, {});
      break;
    case Kind::Split:
      makeRasterJob(1, {{"SplitBlackRed", "1"}});
      job_.input = twoPages(2);
      break;
    case Kind::Turned:
      makeRasterJob(1, {{"AnticlockwiseRotate", "1"},
                        {"HorizontalOffset", "1"},
                        {"HorizontalOffsetValue", "2"}});
      break;
    case Kind::PdfPage:
      makePdfJob();
      break;
    case Kind::PdfCopy:
    case Kind::PictureCopy:
      makeCopyJob(kind == Kind::PictureCopy);
      break;
    case Kind::View:
      makeViewJob();
      break;
  }
  job_.mostSeconds = kMostSeconds;
  before_ = namesInTmp();
}

void FaultyJob::makeRasterJob(int model,
                              const std::vector<std::pair<std::string, std::string>>& options) {
  writeText(folder_ / "queue.ppd", ppdText({model, options, kind_ == Kind::PdfPage}));
  job_.arguments[0] = id_.text();
  job_.ppd = folder_ / "queue.ppd";
  job_.input = twoPages(1);
}

void FaultyJob::makePdfJob() {
  makeRasterJob(1, {});
  document_ = folder_ / "document.pdf";
  possible_ = TempFile::exists("/usr/bin/pdftoppm") && makePdf(document_, postscriptPages(2));
}

void FaultyJob::makeCopyJob(bool picture) {
  writeText(folder_ / "queue.ppd", ppdText({1, {}, true}));
  job_.arguments[0] = id_.text();
  job_.ppd = folder_ / "queue.ppd";
  job_.input = somePdf();
  possible_ = TempFile::exists("/usr/bin/pdftoppm");
  if (!picture) return;
  job_.input[0] = 0x89;
  fs::create_directory(folder_ / "filter");
  writeText(folder_ / "filter/imagetopdf", "#!/bin/sh\necho '%PDF-'; exec cat\n");
  fs::permissions(folder_ / "filter/imagetopdf", fs::perms::owner_all);
  job_.environment.emplace_back("CUPS_SERVERBIN", folder_.path());
}

// A raster: the chain is our own filter alone.
void FaultyJob::makeViewJob() {
  writeText(folder_ / "queue.ppd", ppdText({1, {}, false}));
  writeText(folder_ / "page.ras", asText(rasterStream({inkedPage(rgbHeader(60, 40), 1)})));
  job_.arguments = {"--from",    folder_ / "page.ras", "--ppd", folder_ / "queue.ppd",
                    "--any-ppd", "--output",           "-"};
}

void FaultyJob::restoreTmp() const {
  for (const std::string& name : namesInTmp())
    if (!std::binary_search(before_.begin(), before_.end(), name)) fs::remove_all("/tmp/" + name);
  if (!document_.empty()) fs::copy_file(document_, id_.pdf());
}

// The loader takes a blank for the end of a name, and a checkout may lie below one.
std::string FaultyJob::preloaded() const {
  std::string shim = folder_ / "shim.so";
  if (!fs::exists(shim)) fs::create_symlink(VELKA_FAULT_SHIM, shim);
  return shim;
}

Trial FaultyJob::run(const std::string& fault) const {
  const Trial trial = attempt(fault);
  return trial.result.status == 128 + SIGALRM ? attempt(fault) : trial;
}

Trial FaultyJob::attempt(const std::string& fault) const {
  restoreTmp();
  const std::string report = folder_ / "report";
  writeText(report, std::string(sizeof(FaultReport), '\0'));
  FilterJob job = job_;
  job.environment.insert(job.environment.end(), {{"LD_PRELOAD", preloaded()},
                                                 {"VELKA_FAULT", fault},
                                                 {"VELKA_FAULT_PROGRAM", program_},
                                                 {"VELKA_FAULT_REPORT", report},
                                                 {"ASAN_OPTIONS", kSanitizerOptions}});
  Trial trial;
  trial.result = runFilter(program_, job);
  trial.report = readReport(report);
  trial.log = logText();
  const std::vector<std::string> now = namesInTmp();
  std::set_difference(now.begin(), now.end(), before_.begin(), before_.end(),
                      std::back_inserter(trial.left));
  return trial;
}

Bytes FaultyJob::outputOfRaster() const {
  const TempFile ppd(ppdText({1, {}, false}));
  FilterJob job = job_;
  job.ppd = ppd.path();
  return runFilter(program_, job).output;
}

}  // namespace velka::testing
