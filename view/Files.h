// Whole files in and out.
#pragma once

#include <cstdint>
#include <cstdio>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "Outcome.h"
#include "SignalsHeldBack.h"

namespace velka::view {

/// Holds SIGINT, SIGTERM, SIGHUP and SIGQUIT back while it lives, so that what must be
/// removed at the end is; whatever came meanwhile takes effect then.
class SignalsHeld : public SignalsHeldBack {
 public:
  SignalsHeld();

  /// Whether one waits to take effect; one that we ignore never does.
  [[nodiscard]] static bool pending();
};

/// The most bytes of a file that is read: an endless one must end some day.
inline constexpr size_t kMostBytes = size_t{1} << 30;

/// Reads a file, or standard input for "-", to its end.
[[nodiscard]] Problem readFile(const std::string& name, std::vector<uint8_t>& bytes,
                               size_t most = kMostBytes);

/// Name and reason of a failure that left `errno` behind.
[[nodiscard]] std::string systemTrouble(const std::string& name);

/// A file in the making: written under another name beside its own, which it gets
/// by keep(); without that nothing is left of it. A link is followed, and the file it
/// leads to is the one replaced. "-" is standard output; that, devices and FIFOs are
/// written to as they are. Signals wait from open() to keep() where there is
/// something to remove.
class NewFile {
 public:
  explicit NewFile(std::string name);
  ~NewFile();
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  /// Makes the file, readable as new files are.
  [[nodiscard]] Problem open();
  /// Where to write; null before open().
  [[nodiscard]] std::FILE* file() const { return file_; }
  /// Ends the writing and gives the file its name, over what is there.
  [[nodiscard]] Problem keep();

 private:
  [[nodiscard]] Problem openAsItIs(const std::string& name);
  [[nodiscard]] Problem openBeside();
  [[nodiscard]] Problem trouble() const;

  std::optional<SignalsHeld> held_;
  std::string name_;    // as the user wrote it
  std::string target_;  // where it leads
  std::string working_;
  std::FILE* file_ = nullptr;
};

/// Writes a whole file under its name, or standard output for "-".
[[nodiscard]] Problem writeFile(const std::string& name, std::span<const uint8_t> bytes);

}  // namespace velka::view
