// One job of the printing filter: raster goes in, the printer's commands come out while it
// does, and neither pipe ever waits for the other.
#pragma once

#include <cups/raster.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "Child.h"

namespace velka::app {

struct FilterJob {
  std::string filter;  ///< the program, with its folder
  std::string id;      ///< of letters, digits, dots and dashes; no two jobs at a time share it
  std::string user;
  std::string title;
  std::string options;
  std::string_view ppd;  ///< its text
};

class FilterRun {
 public:
  /// Takes bytes for the printer; false where it will take no more.
  using Commands = std::function<bool(std::span<const uint8_t>)>;
  /// Takes a line of the filter's standard error.
  using Message = std::function<void(const std::string&)>;

  FilterRun(Commands commands, Message message);
  ~FilterRun();
  FilterRun(const FilterRun&) = delete;
  FilterRun& operator=(const FilterRun&) = delete;

  /// Returns what is wrong, empty where the filter runs.
  [[nodiscard]] std::string start(const FilterJob& job);

  /// Begins a page with a header of the filter's kind. What an earlier page lacks becomes
  /// white. False once the filter takes no more.
  [[nodiscard]] bool startPage(const cups_page_header2_t& header);
  /// A line of the page, as long as its header says. Those beyond its height are left out.
  [[nodiscard]] bool writeLine(std::span<const uint8_t> line);
  /// Fills the page with white to its height.
  [[nodiscard]] bool endPage();

  /// Lets the filter end the form that it has begun, and read no further.
  void cancel() noexcept;

  /// Lets the filter end, and hands over the rest of its commands. Returns how it ended
  /// where that was no success; empty else, and after a cancel.
  [[nodiscard]] std::string finish();

 private:
  static ssize_t writeRaster(void* self, unsigned char* bytes, size_t length);
  ssize_t pass(std::span<const uint8_t> bytes);
  void handOver(int events);
  void readCommands();
  void readMessages();
  void tellLines(bool all);
  void closeRaster() noexcept;

  Commands commands_;
  Message message_;
  Child child_;
  cups_raster_t* raster_ = nullptr;
  uint32_t linesLeft_ = 0;
  uint32_t lineBytes_ = 0;
  bool cancelled_ = false;
  bool deaf_ = false;  // the printer takes no more
  std::string said_;
};

}  // namespace velka::app
