// Whole files in and out.
#pragma once

#include <csignal>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "Outcome.h"

namespace velka::view {

/// Holds SIGINT, SIGTERM and SIGHUP back while it lives, so that what must be
/// removed at the end is; whatever came meanwhile takes effect then.
class SignalsHeld {
 public:
  SignalsHeld();
  ~SignalsHeld();
  SignalsHeld(const SignalsHeld&) = delete;
  SignalsHeld& operator=(const SignalsHeld&) = delete;

  [[nodiscard]] const sigset_t& before() const { return before_; }
  /// Whether one waits to take effect.
  [[nodiscard]] static bool pending();

 private:
  sigset_t before_{};
};

/// Reads a file, or standard input for "-", to its end.
[[nodiscard]] Problem readFile(const std::string& name, std::vector<uint8_t>& bytes);

/// A file in the making: written under another name beside its own, which it gets
/// by keep(); without that nothing is left of it. "-" is standard output.
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
  [[nodiscard]] Problem trouble() const;

  SignalsHeld held_;
  std::string name_;
  std::string working_;
  std::FILE* file_ = nullptr;
};

}  // namespace velka::view
