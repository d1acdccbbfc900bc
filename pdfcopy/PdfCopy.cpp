#include "PdfCopy.h"

#include <cups/ppd.h>
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <new>
#include <string>

#include "CopyFile.h"
#include "DocumentKind.h"
#include "FilterMessages.h"
#include "MarkedOptions.h"
#include "PlainNames.h"
#include "QueueCheck.h"
#include "Spool.h"
#include "StandardDescriptors.h"
#include "SystemConverter.h"
#include "Version.h"

namespace velka {
namespace {

// Whether memory, say, ran out while it was read: the printing filter may fare better and
// miss the copy. An option with a default is marked one way or the other.
bool isHalfRead(ppd_file_t* ppd) noexcept {
  constexpr const char* kOption = "PdfPreprocess";
  if (ppd == nullptr) return queuePpd() != nullptr && access(queuePpd(), F_OK) == 0;
  ppd_option_t* option = ppdFindOption(ppd, kOption);
  return option != nullptr && ppdFindChoice(option, option->defchoice) != nullptr &&
         ppdFindMarkedChoice(ppd, kOption) == nullptr;
}

int statusOf(Passage passage) {
  switch (passage) {
    case Passage::CannotRead:
      tellSystemError("Cannot read the job");
      return 1;
    case Passage::CannotWrite:
      tellSystemError("Cannot pass the job on");
      return 1;
    case Passage::Complete:
      break;
  }
  return 0;
}

bool stored(Passage passage, const std::string& where) {
  if (passage == Passage::CannotRead) tellSystemError("Cannot read the job");
  if (passage == Passage::CannotWrite) tellSystemError("Cannot write " + where);
  return passage == Passage::Complete;
}

bool published(CopyFile& copy) {
  if (copy.publish()) {
    tellScheduler(MessageLevel::Debug, std::string("The PDF copy of the job is ") + copy.name());
    return true;
  }
  if (errno == EEXIST) {
    tellScheduler(MessageLevel::Error, std::string(copy.name()) +
                                           " is there already and none of our copies: remove it "
                                           "and print the job again");
  } else {
    tellSystemError(std::string("Cannot make the PDF copy ") + copy.name());
  }
  return false;
}

// Leaves the copy and opens what goes to the next filter.
UniqueFd copyOfPdf(const std::string& head, int input, CopyFile& copy) {
  UniqueFd original(fcntl(copy.descriptor(), F_DUPFD_CLOEXEC, 0));
  if (!original) {
    tellSystemError(std::string("Cannot make the PDF copy ") + copy.name());
    return original;
  }
  const Passage passage = passOn(head, input, copy.descriptor());
  const bool whole = stored(passage, "the PDF copy " + std::string(copy.name())) && published(copy);
  return whole ? std::move(original) : UniqueFd();
}

// The same for a document that a filter of the print system makes a PDF of.
UniqueFd copyOfOther(const std::string& filter, const std::string& head, int input, char* argv[],
                     CopyFile& copy) {
  UniqueFd original = namelessFile();
  if (!original) {
    tellSystemError("Cannot make a temporary file");
    return original;
  }
  if (!stored(passOn(head, input, original.get()), "a temporary file")) return UniqueFd();
  lseek(original.get(), 0, SEEK_SET);
  tellScheduler(MessageLevel::Info, "Making a PDF of the document");
  const bool whole = makePdf(filter, argv, original.get(), copy.descriptor()) && published(copy);
  return whole ? std::move(original) : UniqueFd();
}

UniqueFd leaveCopy(const std::string& head, int input, char* argv[], CopyFile& copy) {
  switch (documentKind(head)) {
    case DocumentKind::Pdf:
      return copyOfPdf(head, input, copy);
    case DocumentKind::PostScript:
      return copyOfOther("gstopdf", head, input, argv, copy);
    case DocumentKind::Picture:
      break;
  }
  return copyOfOther("imagetopdf", head, input, argv, copy);
}

int passOnWithCopy(int input, char* argv[], ppd_file_t* ppd) {
  const std::string why = whyPagesWouldBeWhite(ppd);
  if (!why.empty()) {
    tellScheduler(MessageLevel::Error, why);
    return 1;
  }
  if (!isPlainName(argv[1])) {
    tellScheduler(MessageLevel::Error,
                  "No PDF copy: the job id holds characters that are kept out of file names");
    return 1;
  }
  const std::string head = readHead(input, kHeadSize);
  if (head.empty()) {
    if (errno != 0) return statusOf(Passage::CannotRead);
    tellScheduler(MessageLevel::Debug, "No PDF copy: the job is empty");
    return 0;
  }
  CopyFile copy(argv[1]);
  if (!copy) {
    tellSystemError(std::string("Cannot make the PDF copy ") + copy.name());
    return 1;
  }
  const UniqueFd original = leaveCopy(head, input, argv, copy);
  if (!original) return 1;
  lseek(original.get(), 0, SEEK_SET);
  const int status = statusOf(passOn(original.get(), STDOUT_FILENO));
  if (status == 0) copy.keep();
  return status;
}

int passOnJob(int argc, char* argv[]) {
  constexpr int kWithoutFile = 6;
  constexpr int kWithFile = 7;
  if (argc != kWithoutFile && argc != kWithFile) {
    tellScheduler(MessageLevel::Error,
                  "Usage: velkapdfcopy job-id user title copies options [file]");
    return 1;
  }
  const UniqueFd input(argc == kWithFile ? open(argv[6], O_RDONLY | O_CLOEXEC)
                                         : fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0));
  if (!input) {
    tellSystemError("Cannot open " + std::string(argc == kWithFile ? argv[6] : "standard input"));
    return 1;
  }
  // Both filters are of one package; the printing one has no words for it.
  tellScheduler(MessageLevel::Debug, "Velka " + std::string(version()));
  // Without one the pages come from the raster.
  const OwnedPpd ppd = markedPpd(argv[5]);
  if (isHalfRead(ppd.get())) {
    tellScheduler(MessageLevel::Error,
                  "The PPD of this queue cannot be read, so that it is not known whether a PDF "
                  "copy of the job is wanted: print the job again");
    return 1;
  }
  if (pagesComeFromPdf(ppd.get())) return passOnWithCopy(input.get(), argv, ppd.get());
  tellScheduler(MessageLevel::Debug, "No PDF copy: the pages come from the raster");
  return statusOf(passOn(input.get(), STDOUT_FILENO));
}

}  // namespace

int runPdfCopy(int argc, char* argv[]) noexcept try {
  fillStandardDescriptors();
  installCopySignals();
  return passOnJob(argc, argv);
} catch (const std::bad_alloc&) {
  tellOutOfMemory("No memory for the PDF copy of the job");
  return 1;
}

}  // namespace velka
