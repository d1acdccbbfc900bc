// A folder for what lies between the steps of a job.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>

#include "Outcome.h"

namespace velka::view {

/// A folder that goes with what is in it. Its name serves as the job's id: it is
/// nobody else's, and no real job's, whose ids are numbers.
class WorkFolder {
 public:
  WorkFolder();
  ~WorkFolder();
  WorkFolder(const WorkFolder&) = delete;
  WorkFolder& operator=(const WorkFolder&) = delete;

  /// Why there is no folder; empty where there is one.
  [[nodiscard]] const std::string& trouble() const { return trouble_; }
  [[nodiscard]] const std::filesystem::path& path() const { return path_; }
  [[nodiscard]] std::string id() const { return path_.filename(); }
  [[nodiscard]] std::string operator/(const std::string& name) const { return path_ / name; }

 private:
  // Takes the new folder over, or removes it.
  void keep(const std::string& name);

  std::filesystem::path path_;
  std::string trouble_;
};

/// Writes a file that was not there before; `made` tells whether it is there now.
[[nodiscard]] Problem writeNew(const std::string& name, std::span<const uint8_t> bytes, bool& made);

/// The copy that the printing filter takes pages from: where it looks, ours alone, gone
/// at the end whatever the filter did.
class PdfCopy {
 public:
  explicit PdfCopy(const std::string& id) : path_("/tmp/VK_TEMP_CUPS_" + id + ".pdf") {}
  ~PdfCopy();
  PdfCopy(const PdfCopy&) = delete;
  PdfCopy& operator=(const PdfCopy&) = delete;

  [[nodiscard]] Problem make(const std::string& from);

 private:
  std::string path_;
  bool made_ = false;
};

}  // namespace velka::view
