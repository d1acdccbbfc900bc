#include "DeviceOutput.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "Spool.h"

namespace velka::app {
namespace {

using Clock = std::chrono::steady_clock;
constexpr auto kPause = std::chrono::milliseconds(500);
constexpr auto kPatience = std::chrono::seconds(3);
constexpr size_t kChunk = 32768;

// The jobs that print now.
struct Active {
  std::mutex mutex;
  std::set<DeviceOutput*> outputs;
};

Active& active() {
  static Active all;
  return all;
}

// Held by the job that prints there.
std::mutex& turnOf(pappl_printer_t* printer) {
  static std::mutex mutex;
  static std::map<int, std::mutex> turns;
  const std::lock_guard lock(mutex);
  return turns[papplPrinterGetID(printer)];
}

int64_t now() noexcept {
  return Clock::now().time_since_epoch().count();
}

uint64_t bytesWritten(pappl_device_t* device) {
  pappl_devmetrics_t metrics = {};
  papplDeviceGetMetrics(device, &metrics);
  return metrics.write_bytes;
}

// A file that nobody else can open and that goes with the process.
UniqueFd unnamedFile(const std::string& folder) {
  return UniqueFd(open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600));
}

}  // namespace

DeviceOutput::DeviceOutput(pappl_job_t* job, pappl_device_t* device)
    : job_(job),
      printer_(papplJobGetPrinter(job)),
      lent_(device),
      turn_(turnOf(printer_), std::defer_lock),
      sent_(unnamedFile(spoolFolder())) {
  Active& all = active();
  const std::lock_guard lock(all.mutex);
  all.outputs.insert(this);
}

DeviceOutput::~DeviceOutput() {
  Active& all = active();
  {
    const std::lock_guard lock(all.mutex);
    all.outputs.erase(this);
  }
  disconnect();
  papplPrinterSetReasons(printer_, PAPPL_PREASON_NONE, PAPPL_PREASON_OFFLINE);
}

void DeviceOutput::disconnect() {
  if (device_ != lent_) papplDeviceClose(device_);
  device_ = nullptr;
}

bool DeviceOutput::goesOn() const {
  return !papplJobIsCanceled(job_) && papplSystemIsRunning(papplPrinterGetSystem(printer_));
}

// Jobs that begin at the same moment get one connection from the library. The second one waits
// for its turn here, cancelled or not; then the connection is its own, for a printer may take
// no other beside it. Files are closed at the end of the first job.
bool DeviceOutput::open() {
  const bool second = !turn_.try_lock();
  if (second) turn_.lock();
  if (second && std::string_view(papplPrinterGetDeviceURI(printer_)).starts_with("file:"))
    return connect();
  device_ = lent_;
  before_ = bytesWritten(device_);
  return true;
}

bool DeviceOutput::connect() {
  for (bool first = true; goesOn(); first = false) {
    device_ = papplDeviceOpen(papplPrinterGetDeviceURI(printer_), papplJobGetName(job_),
                              papplLogDevice, papplPrinterGetSystem(printer_));
    if (device_ != nullptr) {
      before_ = 0;
      papplPrinterSetReasons(printer_, PAPPL_PREASON_NONE, PAPPL_PREASON_OFFLINE);
      return true;
    }
    papplPrinterSetReasons(printer_, PAPPL_PREASON_OFFLINE, PAPPL_PREASON_NONE);
    if (first)
      papplLogJob(job_, PAPPL_LOGLEVEL_ERROR, "The printer cannot be reached; the job waits.");
    std::this_thread::sleep_for(kPause);
  }
  return false;
}

bool DeviceOutput::isStuck() const noexcept {
  const int64_t since = since_.load();
  return since != 0 && now() - since > Clock::duration(kPatience).count();
}

bool DeviceOutput::keep(std::span<const uint8_t> bytes) {
  while (sent_ && !bytes.empty()) {
    const ssize_t n = ::write(sent_.get(), bytes.data(), bytes.size());
    if (n < 0 && errno == EINTR) continue;
    // Without it a lost connection is the job's end, and nothing else is worse.
    if (n <= 0) sent_ = UniqueFd();
    if (n > 0) bytes = bytes.subspan(static_cast<size_t>(n));
  }
  return static_cast<bool>(sent_);
}

bool DeviceOutput::send(std::span<const uint8_t> bytes) {
  while (!bytes.empty()) {
    const auto chunk = bytes.first(std::min(bytes.size(), kChunk));
    since_ = now();
    const ssize_t n =
        device_ == nullptr ? -1 : papplDeviceWrite(device_, chunk.data(), chunk.size());
    since_ = 0;
    if (n < 0) return false;
    bytes_ += chunk.size();
    bytes = bytes.subspan(chunk.size());
  }
  return true;
}

bool DeviceOutput::write(std::span<const uint8_t> bytes) {
  const bool kept = keep(bytes);
  if (send(bytes)) return true;
  return kept && recover();
}

// The library's flush does not say whether it failed; its count of bytes does.
bool DeviceOutput::allHasLeft() {
  if (device_ == nullptr) return false;
  since_ = now();
  papplDeviceFlush(device_);
  since_ = 0;
  return bytesWritten(device_) - before_ >= bytes_;
}

bool DeviceOutput::flush() {
  return allHasLeft() || (sent_ && recover());
}

bool DeviceOutput::sendAgain() {
  bytes_ = 0;
  std::vector<uint8_t> buffer(kChunk);
  if (lseek(sent_.get(), 0, SEEK_SET) != 0) return false;
  while (true) {
    const ssize_t n = readSome(sent_.get(), buffer);
    if (n == 0) return allHasLeft();
    if (n < 0 || !send(std::span(buffer).first(static_cast<size_t>(n)))) return false;
  }
}

bool DeviceOutput::recover() {
  papplLogJob(job_, PAPPL_LOGLEVEL_ERROR,
              "The printer is gone; the job waits for it and then begins again.");
  while (true) {
    disconnect();
    papplPrinterSetReasons(printer_, PAPPL_PREASON_OFFLINE, PAPPL_PREASON_NONE);
    std::this_thread::sleep_for(kPause);
    if (!connect()) return false;
    if (sendAgain()) return true;
  }
}

namespace {

bool isPrinting(const pappl_printer_t* printer) {
  Active& all = active();
  const std::lock_guard lock(all.mutex);
  return std::ranges::any_of(
      all.outputs, [&](const DeviceOutput* output) { return output->printer() == printer; });
}

}  // namespace

bool updateStatus(pappl_printer_t* printer) {
  // A look at a file would make one, and a connection to a network printer is its jobs'.
  const std::string_view uri = papplPrinterGetDeviceURI(printer);
  if (!uri.starts_with("usb:") || isPrinting(printer)) return true;
  pappl_device_t* device = papplPrinterOpenDevice(printer);
  if (device == nullptr) {
    papplPrinterSetReasons(printer, PAPPL_PREASON_OFFLINE, PAPPL_PREASON_NONE);
    return true;
  }
  const pappl_preason_t reasons = papplDeviceGetStatus(device);
  papplPrinterCloseDevice(printer);
  papplPrinterSetReasons(printer, reasons, PAPPL_PREASON_DEVICE_STATUS & ~reasons);
  return true;
}

void noteStuckPrinters() {
  Active& all = active();
  const std::lock_guard lock(all.mutex);
  for (const DeviceOutput* output : all.outputs) {
    // A printer that takes nothing is out of paper, or has been taken off line.
    if (output->isStuck())
      papplPrinterSetReasons(output->printer(), PAPPL_PREASON_OFFLINE, PAPPL_PREASON_NONE);
  }
}

}  // namespace velka::app
