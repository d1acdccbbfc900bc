// The version of the whole, which the build has from its project's own line.
#pragma once

#include <string>
#include <string_view>

namespace velka {

/// Three numbers with dots between them.
[[nodiscard]] std::string_view version() noexcept;

/// "PROGRAM (Velka) VERSION" and a line end.
[[nodiscard]] std::string versionText(std::string_view program);

/// Where the one word of the command line is "--version": writes versionText() to standard
/// output and returns true. A print scheduler never starts a filter with a single word.
bool answersVersion(int argc, const char* const argv[], std::string_view program);

}  // namespace velka
