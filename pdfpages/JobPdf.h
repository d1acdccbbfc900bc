// The file at the name of a job's PDF.
#pragma once

#include <cstdint>

namespace velka {

enum class PdfState : uint8_t {
  Missing,  ///< or out of reach: the tools say so themselves
  Ours,     ///< a regular file with one name, this user's or root's
  Foreign   ///< anything else: /tmp is anybody's
};

/// Tells whether a file is still the one it was, with the contents it had.
struct FileIdentity {
  uint64_t device = 0;
  uint64_t inode = 0;
  int64_t size = 0;
  int64_t modified = 0;  ///< in nanoseconds, as are all that follow
  int64_t changed = 0;
  bool operator==(const FileIdentity&) const = default;
};

struct JobPdf {
  PdfState state = PdfState::Missing;
  FileIdentity identity;
};

/// Looks at the name without opening what stands there. A file of ours or root's keeps
/// its name in a sticky folder, so the tools open what was looked at.
[[nodiscard]] JobPdf jobPdfAt(const char* path) noexcept;

}  // namespace velka
