// A job's way to its printer, which may be out of paper, switched off or away: then the job
// waits, the printer's state says so, and it goes on by itself.
#pragma once

#include <pappl/pappl.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <span>

#include "Descriptor.h"

namespace velka::app {

class DeviceOutput {
 public:
  /// Both stay the library's.
  DeviceOutput(pappl_job_t* job, pappl_device_t* device);
  ~DeviceOutput();
  DeviceOutput(const DeviceOutput&) = delete;
  DeviceOutput& operator=(const DeviceOutput&) = delete;

  /// Waits until no other job prints there, and until there is a connection. False as below.
  [[nodiscard]] bool open();

  /// Writes all of it, however long the printer takes. Where the connection is lost, waits
  /// for another one and prints the job from its beginning, since nobody knows what the
  /// printer has kept. False where the job was cancelled meanwhile.
  [[nodiscard]] bool write(std::span<const uint8_t> bytes);

  /// Sees to it that what was written has left us; false as above.
  [[nodiscard]] bool flush();

  /// Whether a write has been waiting for the printer for some seconds; for other threads.
  [[nodiscard]] bool isStuck() const noexcept;
  [[nodiscard]] pappl_printer_t* printer() const noexcept { return printer_; }

 private:
  [[nodiscard]] bool send(std::span<const uint8_t> bytes);
  [[nodiscard]] bool sendAgain();
  [[nodiscard]] bool connect();
  [[nodiscard]] bool recover();
  void disconnect();
  [[nodiscard]] bool keep(std::span<const uint8_t> bytes);
  [[nodiscard]] bool allHasLeft();
  [[nodiscard]] bool goesOn() const;

  pappl_job_t* job_;
  pappl_printer_t* printer_;
  pappl_device_t* lent_;
  pappl_device_t* device_ = nullptr;
  std::unique_lock<std::mutex> turn_;
  UniqueFd sent_;  // what the printer got, on disk, without a name
  uint64_t bytes_ = 0;
  uint64_t before_ = 0;  // the device's own count when we began
  std::atomic<int64_t> since_{0};
};

/// Brings the states of printers up to date with what their jobs wait for; to be called now
/// and then.
void noteStuckPrinters();

/// Asks an idle printer for its state; the library's callback.
bool updateStatus(pappl_printer_t* printer);

}  // namespace velka::app
