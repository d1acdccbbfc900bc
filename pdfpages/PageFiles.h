// The files that pdftoppm leaves its page pictures in.
//
// It pads the page number to the digits of the document's last page, so a picture's
// name is only foreseen where the page count is known. A page has up to ten names.
// The job id must be a plain name.
#pragma once

#include "FixedText.h"

namespace velka {

/// The name for a page number padded with zeros to `digits`.
[[nodiscard]] FixedText pageFileName(const char* jobId, int page, int digits) noexcept;

/// Puts an empty file of our own at every name the page's picture may get, so that
/// the tool writes into it and follows nothing planted there. False, with nothing
/// made, when one of the names is taken or the page is below 1.
[[nodiscard]] bool reservePageFiles(const char* jobId, int page) noexcept;

/// Removes those of the files that are still empty.
void removeEmptyPageFiles(const char* jobId, int page) noexcept;

/// Removes those of the files that hold a picture with fewer pixels than its size line
/// promises: the tool was stopped, or the disk is full.
void removeHalfPageFiles(const char* jobId, int page) noexcept;

/// Removes all files of the job's pages 1 to `pages`; none where the id is not plain.
void removePageFiles(const char* jobId, int pages) noexcept;

}  // namespace velka
