#include "kills/KilledJob.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>

#include "CommandReader.h"
#include "pdfcopy/CopyFixture.h"
#include "support/Eventually.h"
#include "support/RasterBuilder.h"

namespace velka::testing {
namespace {

namespace fs = std::filesystem;

constexpr unsigned kPages = 3;
constexpr unsigned kMostSeconds = 120;
constexpr const char* kMark = "VELKA_TEST_JOB";

const std::vector<std::string> kTools = {"sh", "grep", "cut", "sleep", "kill", "cat"};

RasterPage pageNumber(unsigned number, unsigned copies) {
  cups_page_header2_t header = rgbHeader(150, 100);
  header.NumCopies = copies;
  return inkedPage(header, 2 * number);
}

// As the tool would write it.
std::string pictureOf(const RasterPage& page) {
  std::string picture = "P6\n" + std::to_string(page.header.cupsWidth) + ' ' +
                        std::to_string(page.header.cupsHeight) + "\n255\n";
  for (const Bytes& line : page.lines) picture.append(line.begin(), line.end());
  return picture;
}

// Those with this in their environment, but for this one.
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
  std::vector<RasterPage> pages;
  for (unsigned page = 1; page <= kPages; ++page) pages.push_back(pageNumber(page, copies));
  job_.arguments[0] = id_.text();
  job_.ppd = folder_ / "queue.ppd";
  job_.input = rasterStream(pages);
}

// Tools as quick as can be, each with a child beside it that would be there for long.
void KilledJob::makePdfJob() {
  for (unsigned page = 1; page <= kPages; ++page)
    writeText(folder_ / std::to_string(page), pictureOf(pageNumber(page, 1)));
  const std::string child = "sleep 600 >/dev/null 2>&1 & ";
  tools_.addScript("pdfinfo", child + "echo 'Pages:          3'; kill $!");
  tools_.addScript("pdftoppm", child +
                                   "while [ $1 != -f ]; do shift; done; page=$2; "
                                   "for root; do :; done; cat " +
                                   folder_.path() + "/$page >$root-$page.ppm; kill $!");
  job_.path = tools_.path();
}

std::vector<std::string> KilledJob::alive() const {
  return aliveWith(kMark + ('=' + id_.text()));
}

std::vector<std::string> aliveWith(const std::string& mark) {
  std::vector<pid_t> processes;
  eventually([&] { return (processes = processesWith(mark)).empty(); });
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
  FilterJob job = job_;
  const Killer killer(job, signal, when);
  Outcome run = outcomeOf(job);
  run.calls = killer.calls();
  return run;
}

Outcome KilledJob::runChanged(const std::function<void(FilterJob& job)>& change) {
  tmp_.clear();
  FilterJob job = job_;
  change(job);
  return outcomeOf(job);
}

FilterResult KilledJob::runBeside() {
  putDocument();
  return runFilter(program_, job_);
}

void KilledJob::openToAll() {
  fs::copy_file(program_, folder_ / "program");
  program_ = folder_ / "program";
  for (const std::string& folder : {folder_.path(), tools_.path()})
    fs::permissions(folder, fs::perms::others_read | fs::perms::others_exec, fs::perm_options::add);
}

void KilledJob::putDocument() const {
  if (kind_ == Kind::Pdf) writeText(id_.pdf(), "a document");
}

Outcome KilledJob::outcomeOf(const FilterJob& job) const {
  putDocument();
  Outcome run;
  const auto start = std::chrono::steady_clock::now();
  run.result = runFilter(program_, job);
  run.time = std::chrono::duration_cast<std::chrono::microseconds>(
      std::chrono::steady_clock::now() - start);
  run.alive = alive();
  run.log = logText();
  run.messages = logMessages();
  run.left = tmp_.left();
  return run;
}

std::string nameOf(KilledJob::Kind kind) {
  constexpr std::array kNames = {"Raster", "Copies", "Orlo", "Pdf", "PdfCopy"};
  return kNames[static_cast<size_t>(kind)];
}

std::vector<Bytes> pagesOf(const Bytes& stream) {
  std::vector<Bytes> pages;
  auto start = stream.begin();
  decode::CommandReader commands(stream, std::nullopt);
  while (const auto command = commands.next()) {
    if (command->kind != decode::CommandKind::FormFeed) continue;
    const auto end = stream.begin() + static_cast<ptrdiff_t>(command->offset + command->size);
    pages.emplace_back(start, end);
    start = end;
  }
  return pages;
}

Bytes joined(Bytes bytes, const Bytes& more) {
  bytes.insert(bytes.end(), more.begin(), more.end());
  return bytes;
}

Bytes endOfDocument() {
  return {0x1B, '@'};
}

Bytes whitePageOf(const Bytes& stream) {
  constexpr ptrdiff_t kStartAndLength = 7;
  return {stream.begin(), stream.begin() + kStartAndLength};
}

bool beginsWith(const Bytes& bytes, const Bytes& head) {
  return head.size() <= bytes.size() && std::equal(head.begin(), head.end(), bytes.begin());
}

}  // namespace velka::testing
