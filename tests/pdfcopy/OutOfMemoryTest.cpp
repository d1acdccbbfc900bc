// A copier that gets no memory.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "PdfCopy.h"
#include "pdfcopy/CopyFixture.h"
#include "pdfcopy/FailingNew.h"

namespace velka::testing {
namespace {

TEST(OutOfMemory, StopsTheJobAndSaysSo) {
  CopyJob copy("memory");
  // Not what the test has said so far.
  std::fflush(stdout);
  // What fails is told when standard output is the test's own again.
  auto errors = std::make_unique<Capture>(STDERR_FILENO);
  auto output = std::make_unique<Capture>(STDOUT_FILENO);
  const pid_t child = fork();
  if (child == 0) {
    const TempFile document(asText(somePdf()), ".pdf");
    std::string id = copy.id.text();
    std::string options = "PdfPreprocess=yes";
    std::string word = "word";
    std::string file = document.path();
    std::array<char*, 8> argv = {word.data(), id.data(),      word.data(), word.data(),
                                 word.data(), options.data(), file.data(), nullptr};
    setenv("PPD", copy.job.ppd->c_str(), 1);
    memoryIsGone = true;
    const int status = runPdfCopy(7, argv.data());
    memoryIsGone = false;
    unlink(document.path().c_str());
    _exit(status);
  }
  int status = -1;
  waitpid(child, &status, 0);
  const std::string said = asText(errors->bytes());
  const Bytes passedOn = output->bytes();
  errors.reset();
  output.reset();
  EXPECT_EQ(WEXITSTATUS(status), 1);
  EXPECT_EQ(said, "\nERROR: No memory for the PDF copy of the job\n");
  EXPECT_EQ(passedOn, Bytes{});
  EXPECT_TRUE(filesOf(copy.id.text()).empty());
}

}  // namespace
}  // namespace velka::testing
