// What a document is, told by its first bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace velka {

enum class DocumentKind : uint8_t { Pdf, PostScript, Picture };

/// Readers of PDF look for the header in this many bytes.
inline constexpr size_t kHeadSize = 1024;

/// A PDF has its header at the start of a line in there, PostScript starts with its
/// own; all else that reaches the filter is a picture.
[[nodiscard]] DocumentKind documentKind(std::string_view head) noexcept;

}  // namespace velka
