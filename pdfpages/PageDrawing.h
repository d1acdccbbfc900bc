// One page of the PDF through the tool that draws it.
#pragma once

#include "FixedText.h"
#include "ShellCommand.h"

namespace velka {

/// Why no tool may be run for this job and PDF, in words; null where one may.
[[nodiscard]] const char* whyNoTool(const char* jobId, const char* pdfPath,
                                    const ToolWatch& watch) noexcept;

struct PageDrawing {
  ToolEnd end;
  const char* refusal = nullptr;  ///< why the tool was not run; null where it was
};

/// Runs the command that leaves the page's picture at one of the page's names
/// (PageFiles.h), and removes what stayed empty at the others. The job id must be a plain
/// name.
[[nodiscard]] PageDrawing drawPage(const FixedText& command, const char* jobId, int page,
                                   const ToolWatch& watch) noexcept;

}  // namespace velka
