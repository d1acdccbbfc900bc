// A PPD made of an input: options of the system's own with any codes, and any text
// behind them.
#pragma once

#include <cups/ppd.h>

#include "Input.h"

namespace velka::fuzz {

/// A file without a name, which others open by its path while the object lives.
class MemoryFile {
 public:
  explicit MemoryFile(std::span<const uint8_t> contents);
  ~MemoryFile();
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;
  [[nodiscard]] const std::string& path() const { return path_; }

 private:
  int fd_;
  std::string path_;
};

/// The PPD's text: model number, options, each with a code by name or of its own, then a
/// text as it comes.
[[nodiscard]] std::string anyPpd(Input& input);

/// The keyword of an option that the filter reads.
[[nodiscard]] const char* anyKeyword(Input& input);

}  // namespace velka::fuzz
