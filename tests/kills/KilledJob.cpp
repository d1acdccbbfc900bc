#include "kills/KilledJob.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "pdfcopy/CopyFixture.h"
#include "support/RasterBuilder.h"

namespace velka::testing {
namespace {

namespace fs = std::filesystem;

constexpr unsigned kPages = 3;
constexpr unsigned kMostSeconds = 120;
constexpr const char* kMark = "VELKA_TEST_JOB";

const std::vector<std::string> kTools = {"sh", "grep", "cut", "sleep", "kill"};

// Their command lines, by what stands in their environment.
std::vector<pid_t> processesWith(const std::string& variable) {
  std::vector<pid_t> found;
  std::error_code ignored;
  for (const auto& entry : fs::directory_iterator("/proc", ignored)) {
    const pid_t pid = std::atoi(entry.path().filename().c_str());
    if (pid <= 0 || pid == getpid()) continue;
    const std::string environment = textOf(entry.path() / "environ");
    if (environment.find(variable + '\0') != std::string::npos) found.push_back(pid);
  }
  return found;
}

}  // namespace

KilledJob::KilledJob(Kind kind)
    : kind_(kind),
      tools_(kTools),
      program_(fs::canonical(copies() ? VELKA_PDFCOPY : VELKA_FILTER)) {
  makeRasterJob(kind == Kind::Orlo ? 2 : 1, kind == Kind::Copies ? 3 : 1);
  if (kind == Kind::Pdf) makePdfJob();
  if (copies()) job_.input = somePdf();
  job_.environment.emplace_back(kMark, id_.text());
  job_.mostSeconds = kMostSeconds;
  fs::remove("/tmp/velka.log");
  tmp_ = {};
}

void KilledJob::makeRasterJob(int model, unsigned copies) {
  writeText(folder_ / "queue.ppd",
            ppdText({model, {}, kind_ == Kind::Pdf || kind_ == Kind::PdfCopy}));
  cups_page_header2_t header = rgbHeader(150, 100);
  header.NumCopies = copies;
  std::vector<RasterPage> pages;
  for (unsigned page = 1; page <= kPages; ++page) pages.push_back(inkedPage(header, 2 * page));
  job_.arguments[0] = id_.text();
  job_.ppd = folder_ / "queue.ppd";
  job_.input = rasterStream(pages);
}

void KilledJob::makePdfJob() {
  document_ = folder_ / "document.pdf";
  possible_ = TempFile::exists("/usr/bin/pdftoppm") && makePdf(document_, postscriptPages(kPages));
  for (const char* tool : {"pdfinfo", "pdftoppm"}) wrapTool(tool);
  job_.path = tools_.path();
}

// The system's own, with a child beside it that would be there for long.
void KilledJob::wrapTool(const std::string& name) {
  tools_.addScript(name, "sleep 600 >/dev/null 2>&1 & /usr/bin/" + name +
                             " \"$@\"; status=$?; kill $!; exit $status");
}

void KilledJob::putDocument() const {
  std::error_code ignored;
  if (!document_.empty())
    fs::copy_file(document_, id_.pdf(), fs::copy_options::overwrite_existing, ignored);
}

// What has been killed may take a moment to be gone: ten seconds at most.
std::vector<std::string> KilledJob::alive() const {
  const std::string mark = kMark + ('=' + id_.text());
  std::vector<pid_t> processes = processesWith(mark);
  for (int round = 0; round < 1000 && !processes.empty(); ++round) {
    usleep(10000);
    processes = processesWith(mark);
  }
  std::vector<std::string> lines;
  for (const pid_t pid : processes) {
    lines.push_back(textOf("/proc/" + std::to_string(pid) + "/cmdline"));
    std::replace(lines.back().begin(), lines.back().end(), '\0', ' ');
    kill(pid, SIGKILL);
  }
  return lines;
}

Outcome KilledJob::run(int signal, Instant when) {
  tmp_.clear();
  return runAgain(signal, when);
}

Outcome KilledJob::runAgain(int signal, Instant when) {
  putDocument();
  Outcome run;
  FilterJob job = job_;
  const Killer killer(job, signal, when);
  const auto start = std::chrono::steady_clock::now();
  run.result = runFilter(program_, job);
  run.time = std::chrono::duration_cast<std::chrono::microseconds>(
      std::chrono::steady_clock::now() - start);
  run.alive = alive();
  run.calls = killer.calls();
  run.log = logText();
  run.messages = logMessages();
  run.left = tmp_.left();
  return run;
}

}  // namespace velka::testing
