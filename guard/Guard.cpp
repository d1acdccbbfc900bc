#include "Guard.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <new>
#include <string>

#include "Descriptor.h"
#include "FilterMessages.h"
#include "JobEnds.h"
#include "JobWatch.h"
#include "MarkedOptions.h"
#include "Passage.h"
#include "RasterStream.h"
#include "StandardDescriptors.h"
#include "Version.h"
#include "rastovelka.h"

namespace velka {
namespace {

// What becomes of the stream behind a page.
enum class Next : uint8_t {
  Page,  ///< another may follow
  End,   ///< it ended well, or nobody wants the rest
  Fail   ///< it did not, and that is told
};

Next failsWith(const std::string& text) {
  tellScheduler(MessageLevel::Error, text);
  return Next::Fail;
}

// Whoever cancels a job ends the rasteriser a moment before us, and that is no damage.
bool isCancelledByNow() noexcept {
  constexpr useconds_t kPause = 10000;
  constexpr int kPauses = 10;
  for (int i = 0; i < kPauses && Canceled == 0; ++i) usleep(kPause);
  return Canceled != 0;
}

class Guard {
 public:
  Guard(RasterPassage& passage, JobWatch& watch) : passage_(passage), watch_(watch) {}

  Next run();

 private:
  Next passPage(const RasterFormat& format);
  Next passLines(const RasterFormat& format, const cups_page_header2_t& header);
  bool moveSome(PageLines& lines);
  Next noRaster(std::span<const uint8_t> head);
  Next noHeader(std::span<const uint8_t> bytes, const RasterFormat& format);
  Next cutShort(const std::string& where);
  Next whyNotWritten() const;

  RasterPassage& passage_;
  JobWatch& watch_;
};

// A reader that is gone has its own to tell.
Next Guard::whyNotWritten() const {
  if (passage_.writeError() == EPIPE) return Next::End;
  errno = passage_.writeError();
  tellSystemError("Cannot pass the raster on");
  return Next::Fail;
}

Next Guard::cutShort(const std::string& where) {
  if (passage_.readError() != 0) {
    errno = passage_.readError();
    tellSystemError("Cannot read the raster");
    return Next::Fail;
  }
  if (isCancelledByNow()) return Next::End;
  return failsWith("The raster ends " + where + ": what is missing stays white");
}

Next Guard::noRaster(std::span<const uint8_t> head) {
  if (!passage_.write(head)) return whyNotWritten();
  if (head.empty()) {
    if (passage_.readError() != 0) return cutShort("");
    tellScheduler(MessageLevel::Debug, "No raster came");
    return Next::End;
  }
  // Its reader is gone at the first bytes of it.
  passage_.moveRest();
  return failsWith("What came to be printed is no CUPS raster, so that nothing is printed");
}

// The printing filter reads no further, so the first page is kept back: there is nothing
// that it could print.
Next Guard::noHeader(std::span<const uint8_t> bytes, const RasterFormat& format) {
  const bool first = watch_.page() == 0;
  const std::string page = "page " + std::to_string(watch_.page() + 1);
  if (bytes.size() < format.headerBytes) {
    if (!passage_.write(bytes)) return whyNotWritten();
    return cutShort("in the header of " + page);
  }
  const std::string text = "The header of " + page + " makes no sense: ";
  if (first) return failsWith(text + "the job is not printed");
  if (!passage_.write(bytes)) return whyNotWritten();
  passage_.moveRest();
  return failsWith(text + "it is not printed, and nothing behind it");
}

// Some of the lines, at most a tenth of the page where that can be had. False where no more
// comes or goes.
bool Guard::moveSome(PageLines& lines) {
  constexpr uint64_t kSteps = 10;
  constexpr uint64_t kLeast = uint64_t{1} << 20U;
  const uint64_t plain = lines.plainBytes();
  if (plain > 0) {
    const uint64_t wanted = std::min(plain, std::max(lines.allPlainBytes() / kSteps + 1, kLeast));
    const uint64_t moved = passage_.move(wanted);
    lines.skip(moved);
    return moved == wanted;
  }
  const size_t taken = lines.take(passage_.next());
  return taken > 0 && passage_.pass(taken);
}

Next Guard::passLines(const RasterFormat& format, const cups_page_header2_t& header) {
  PageLines lines(format, header);
  while (!lines.areComplete() && moveSome(lines)) watch_.pagePassed(lines.percent());
  if (passage_.writeError() != 0) return whyNotWritten();
  if (lines.areComplete()) {
    watch_.pageEnds();
    return Next::Page;
  }
  const Next next = cutShort("within page " + std::to_string(watch_.page()));
  // Its reader prints it all the same, with white rows; unless nobody wants it any more.
  if (next == Next::Fail) watch_.pageEnds();
  return next;
}

Next Guard::passPage(const RasterFormat& format) {
  if (!passage_.waits(Canceled)) return Next::End;
  std::array<uint8_t, kMostHeaderBytes> room = {};
  const std::span bytes = std::span(room).first(format.headerBytes);
  const std::span came = bytes.first(passage_.read(bytes));
  if (came.empty() && passage_.readError() == 0) {
    watch_.pagesEnd();
    return Next::End;
  }
  const auto header = pageHeader(format, came);
  if (!header) return noHeader(came, format);
  if (!watch_.pageBegins(*header)) return Next::Fail;
  if (!passage_.write(came)) return whyNotWritten();
  return passLines(format, *header);
}

Next Guard::run() {
  RasterSync sync = {};
  if (!passage_.waits(Canceled)) {
    // The printing filter is told at the same time. A raster that ends before it has heard
    // would be a failed start to it, which leaves the job's PDF copy where it is.
    passage_.awaitEndOfReader();
    return Next::End;
  }
  const size_t came = passage_.read(sync);
  const auto format = came == sync.size() ? rasterFormat(sync) : std::nullopt;
  if (!format) return noRaster(std::span(sync).first(came));
  // Alone it is a raster without a page, at which the filter ends and clears up.
  if (!passage_.write(sync)) return whyNotWritten();
  Next next = Next::Page;
  while (next == Next::Page) next = passPage(*format);
  const bool whole = next == Next::End && !passage_.failed() && Canceled == 0;
  if (whole && watch_.page() == 0)
    tellScheduler(MessageLevel::Error, "The raster holds no page, so that nothing is printed");
  return next;
}

// Before the pages are counted, so that nobody waits for that.
void endOutput() noexcept {
  const UniqueFd nothing(open("/dev/null", O_WRONLY | O_CLOEXEC));
  if (nothing) dup2(nothing.get(), STDOUT_FILENO);
}

int passOnJob(int argc, char* argv[]) {
  constexpr int kWithoutFile = 6;
  constexpr int kWithFile = 7;
  if (argc != kWithoutFile && argc != kWithFile) {
    tellScheduler(MessageLevel::Error, "Usage: velkaguard job-id user title copies options [file]");
    return 1;
  }
  const UniqueFd input(argc == kWithFile ? open(argv[6], O_RDONLY | O_CLOEXEC)
                                         : fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0));
  if (!input) {
    tellSystemError("Cannot open " + std::string(argc == kWithFile ? argv[6] : "standard input"));
    return 1;
  }
  tellScheduler(MessageLevel::Debug, "velkaguard " + std::string(version()));
  const OwnedPpd ppd = markedPpd(argv[5]);
  RasterPassage passage(input.get(), STDOUT_FILENO);
  JobWatch watch(ppd.get(), argv[1]);
  const Next next = Guard(passage, watch).run();
  endOutput();
  if (Canceled == 0) watch.checkCopyPages({pageLimits.counting, Canceled});
  return next == Next::Fail ? 1 : 0;
}

}  // namespace

int runGuard(int argc, char* argv[]) noexcept try {
  fillStandardDescriptors();
  installSignals();
  return passOnJob(argc, argv);
} catch (const std::bad_alloc&) {
  tellOutOfMemory("No memory to watch the job's pages");
  return 1;
}

}  // namespace velka
