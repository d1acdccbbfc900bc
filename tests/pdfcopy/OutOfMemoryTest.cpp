// A copier that gets no memory.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>

#include "PdfCopy.h"
#include "pdfcopy/CopyFixture.h"
#include "pdfcopy/FailingNew.h"

namespace velka::testing {
namespace {

TEST(OutOfMemory, StopsTheJobAndSaysSo) {
  CopyJob copy("memory");
  const Capture errors(STDERR_FILENO);
  const Capture output(STDOUT_FILENO);
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
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(WEXITSTATUS(status), 1);
  EXPECT_EQ(asText(errors.bytes()), "\nERROR: No memory for the PDF copy of the job\n");
  EXPECT_EQ(output.bytes(), Bytes{});
  EXPECT_TRUE(filesOf(copy.id.text()).empty());
}

}  // namespace
}  // namespace velka::testing
