// What the page asks for, and what it is told.
#pragma once

#include <string>

#include "Message.h"
#include "Workbench.h"

namespace velka::serve {

/// What the answers are about; all of it outlives them.
struct Subject {
  const PrinterOptions& options;
  Workbench& bench;
  std::string shown;     ///< the document as its user calls it
  std::string fileName;  ///< for command lines
  std::string ppd;
  uint64_t page = 1;  ///< where to begin
};

/// Answers requests that were let in. May be used from several threads.
class Answers {
 public:
  explicit Answers(Subject subject) : subject_(std::move(subject)) {}

  /// `path` is what stands behind the secret.
  [[nodiscard]] Response to(const std::string& path, const Request& request) const;

 private:
  [[nodiscard]] Response options() const;
  [[nodiscard]] Response lines(const Settings& settings) const;
  [[nodiscard]] Response savedSettings(const Settings& settings) const;
  [[nodiscard]] Response paper(const Wish& wish, const Request& request) const;
  [[nodiscard]] Response original(const Wish& wish, const Request& request) const;
  [[nodiscard]] Response facts(const Wish& wish) const;
  [[nodiscard]] Response colours(const Wish& wish) const;
  [[nodiscard]] Response place(const Wish& wish, const Request& request) const;
  [[nodiscard]] Response colour(const Settings& settings, uint32_t rgb) const;
  [[nodiscard]] Response wanted(const Wish& wish, const Request& request) const;
  [[nodiscard]] Response ofWish(const std::string& path, const Request& request) const;

  Subject subject_;
};

}  // namespace velka::serve
