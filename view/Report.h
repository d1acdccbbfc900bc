// What the views have in common: messages, exit statuses, the paper.
#pragma once

#include <optional>
#include <string>

#include "Arguments.h"
#include "Outcome.h"
#include "PaperView.h"
#include "Stream.h"

namespace velka::view {

/// Tells the user on standard error; gives `status` back.
int fail(const std::string& text, Status status = kFailed);

/// Tells of a stream's fault, if there is one; the worse of `status` and it.
int finish(const Stream& stream, const std::optional<decode::Fault>& fault, int status);

/// "NAME: page N (offset N): ", as messages about a page begin.
[[nodiscard]] std::string pageText(const Stream& stream, uint64_t number, const decode::Page& page);

/// Tells in one line what of a page will not be on paper as it was meant, if anything;
/// `outside` dots miss it.
void warnOfPage(const Stream& stream, uint64_t number, const decode::Page& page, uint64_t outside);

/// Output that cannot be written (a full disk, say) must not pass for done.
int flushed(int status);

/// Width of the paper: as stated, else as the printer's or wide enough for the print.
[[nodiscard]] decode::PaperWidth paperWidth(const Arguments& arguments, const Stream& stream);

/// How the command line wants pages drawn.
[[nodiscard]] PaperView paperView(const Arguments& arguments, const Stream& stream,
                                  const decode::Grid& grid);

}  // namespace velka::view
