#include "FilterRun.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>

namespace velka::app {
namespace {

constexpr size_t kReadBytes = 65536;
constexpr size_t kLongestMessage = 1024;
constexpr int kForInput = 1;
constexpr int kUntilEnd = 0;

bool setNonBlocking(int fd) noexcept {
  const int flags = fcntl(fd, F_GETFL);
  return flags >= 0 && fcntl(fd, F_SETFL, flags | O_NONBLOCK) == 0;
}

// Texts of the filter have no line ends where the print system's log is their reader.
std::string withBlanks(std::string text) {
  for (char& c : text) {
    if (static_cast<unsigned char>(c) < ' ') c = ' ';
  }
  return text;
}

}  // namespace

FilterRun::FilterRun(Commands commands, Message message)
    : commands_(std::move(commands)), message_(std::move(message)) {}

FilterRun::~FilterRun() {
  // Whatever is still to be written goes nowhere.
  child_.closeIn();
  closeRaster();
}

std::string FilterRun::start(const FilterJob& job) {
  ChildProgram program;
  program.program = job.filter;
  program.arguments = {"rastovelka", job.id, job.user, job.title, "1", job.options};
  program.environment = {{"PPD", "/dev/fd/3"}, {"LC_ALL", "C.UTF-8"}};
  program.thirdText = job.ppd;
  std::string trouble = child_.start(program);
  if (!trouble.empty()) return trouble;
  if (!setNonBlocking(child_.in())) return "the filter's pipe cannot be set up";
  raster_ = cupsRasterOpenIO(&FilterRun::writeRaster, this, CUPS_RASTER_WRITE);
  // A filter that ended at once takes no first byte; its end is told by finish().
  return {};
}

ssize_t FilterRun::writeRaster(void* self, unsigned char* bytes, size_t length) {
  return static_cast<FilterRun*>(self)->pass({bytes, length});
}

// Waits until the filter takes something, and sees to what it has to say meanwhile.
ssize_t FilterRun::pass(std::span<const uint8_t> bytes) {
  size_t done = 0;
  while (done < bytes.size()) {
    if (child_.in() < 0 || deaf_) return -1;
    const ssize_t n = write(child_.in(), bytes.data() + done, bytes.size() - done);
    if (n > 0) {
      done += static_cast<size_t>(n);
    } else if (n < 0 && errno != EAGAIN && errno != EINTR) {
      return -1;
    } else {
      handOver(kForInput);
    }
  }
  return static_cast<ssize_t>(done);
}

void FilterRun::handOver(int events) {
  std::array<pollfd, 3> ready = {{{events == kForInput ? child_.in() : -1, POLLOUT, 0},
                                  {child_.out(), POLLIN, 0},
                                  {child_.err(), POLLIN, 0}}};
  if (poll(ready.data(), ready.size(), -1) <= 0) return;
  if (ready[2].revents != 0) readMessages();
  if (ready[1].revents != 0) readCommands();
}

void FilterRun::readCommands() {
  std::array<uint8_t, kReadBytes> buffer;
  const ssize_t n = readSome(child_.out(), buffer);
  if (n <= 0) {
    child_.closeOut();
    return;
  }
  // Once the printer has failed the filter's rest goes nowhere, so that it can end.
  if (!deaf_ && !commands_({buffer.data(), static_cast<size_t>(n)})) deaf_ = true;
}

void FilterRun::readMessages() {
  std::array<uint8_t, kLongestMessage> buffer;
  const ssize_t n = readSome(child_.err(), buffer);
  if (n <= 0) {
    child_.closeErr();
    return;
  }
  said_.append(buffer.begin(), buffer.begin() + n);
  tellLines(false);
}

void FilterRun::tellLines(bool all) {
  while (!said_.empty()) {
    size_t end = said_.find('\n');
    if (end == std::string::npos) {
      if (!all && said_.size() < kLongestMessage) return;
      end = said_.size();
    }
    if (end > 0) message_(withBlanks(said_.substr(0, end)));
    said_.erase(0, end + 1);
  }
}

bool FilterRun::startPage(const cups_page_header2_t& header) {
  if (raster_ == nullptr || cancelled_ || !endPage()) return false;
  cups_page_header2_t copy = header;
  if (cupsRasterWriteHeader2(raster_, &copy) == 0) return false;
  linesLeft_ = header.cupsHeight;
  lineBytes_ = header.cupsBytesPerLine;
  return true;
}

bool FilterRun::writeLine(std::span<const uint8_t> line) {
  if (linesLeft_ == 0) return true;
  if (raster_ == nullptr || line.size() != lineBytes_) return false;
  --linesLeft_;
  // The call wants a pointer to what may change; it only reads.
  auto* bytes = const_cast<unsigned char*>(line.data());  // NOLINT
  return cupsRasterWritePixels(raster_, bytes, lineBytes_) == lineBytes_;
}

bool FilterRun::endPage() {
  if (linesLeft_ == 0) return true;
  const std::vector<uint8_t> white(lineBytes_, 0xFF);
  while (linesLeft_ > 0) {
    if (!writeLine(white)) return false;
  }
  return true;
}

void FilterRun::cancel() noexcept {
  if (cancelled_) return;
  cancelled_ = true;
  child_.signal(SIGTERM);
  // The rest of the page is white, and no further one follows.
  linesLeft_ = 0;
  child_.closeIn();
}

std::string FilterRun::finish() {
  closeRaster();
  child_.closeIn();
  while (child_.out() >= 0 || child_.err() >= 0) handOver(kUntilEnd);
  tellLines(true);
  const std::string end = child_.wait();
  return cancelled_ ? "" : end;
}

void FilterRun::closeRaster() noexcept {
  if (raster_ != nullptr) cupsRasterClose(raster_);
  raster_ = nullptr;
}

}  // namespace velka::app
