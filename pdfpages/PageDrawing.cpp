#include "PageDrawing.h"

#include "JobPdf.h"
#include "PageFiles.h"
#include "PlainNames.h"

namespace velka {
namespace {

constexpr const char* kCancelled = "the job is cancelled";

}  // namespace

const char* whyNoTool(const char* jobId, const char* pdfPath, const ToolWatch& watch) noexcept {
  if (!isPlainName(jobId) || !isPlainPath(pdfPath))
    return "the job id holds characters that a shell may act on";
  if (watch.cancelled != 0) return kCancelled;
  if (jobPdfAt(pdfPath).state == PdfState::Foreign) return "at its name is no file of ours";
  return nullptr;
}

PageDrawing drawPage(const FixedText& command, const char* jobId, int page,
                     const ToolWatch& watch) noexcept {
  PageDrawing drawing;
  // A command that was cut would write to names of another job.
  if (command.cut) {
    drawing.refusal = "its command is too long";
  } else if (!reservePageFiles(jobId, page)) {
    drawing.refusal = "a name for its picture is taken";
  } else {
    drawing.end = runShell(command.text(), watch);
    removeEmptyPageFiles(jobId, page);
    if (drawing.end.status == -1)
      drawing.refusal = watch.cancelled != 0 ? kCancelled : "its tool cannot be started";
  }
  return drawing;
}

}  // namespace velka
