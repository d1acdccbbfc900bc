// Jobs whose pages would come out white although their copy is made.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "pdfcopy/CopyFixture.h"

namespace velka::testing {
namespace {

// No output, no file, a message and status 1.
void expectStoppedSaying(const CopyJob& copy, const FilterResult& result,
                         const std::string& message) {
  EXPECT_EQ(result.status, 1);
  EXPECT_TRUE(result.output.empty());
  EXPECT_EQ(result.errors, kVersionTold + "\nERROR: " + message + "\n");
  EXPECT_TRUE(filesOf(copy.id.text()).empty());
}

std::string missing(const std::string& tool) {
  return "PdfPreprocess needs " + tool +
         ", which is not on the PATH: install poppler-utils and print the job again";
}

TEST(QueueCheck, StopsTheJobWhereAToolIsMissing) {
  for (const std::string& tool : {std::string("pdftoppm"), std::string("pdfinfo")}) {
    const ToolFolder tools({tool == "pdfinfo" ? "pdftoppm" : "pdfinfo"});
    CopyJob copy("missing");
    copy.job.path = "/nonexistent:" + tools.path();
    expectStoppedSaying(copy, copy.run(), missing(tool));
  }
}

TEST(QueueCheck, TakesNoFolderAndNoTextForATool) {
  const ToolFolder tools({"pdfinfo"});
  CopyJob copy("notool");
  copy.job.path = tools.path();
  const std::string name = tools.path() + "/pdftoppm";
  ASSERT_EQ(mkdir(name.c_str(), 0755), 0);
  expectStoppedSaying(copy, copy.run(), missing("pdftoppm"));
  rmdir(name.c_str());
  writeText(name, "a text");
  chmod(name.c_str(), 0644);
  expectStoppedSaying(copy, copy.run(), missing("pdftoppm"));
}

TEST(QueueCheck, SearchesThePathAsTheShellDoes) {
  const ToolFolder info({"pdfinfo"});
  const ToolFolder draw({"pdftoppm"});
  CopyJob copy("path");
  for (const std::string& path :
       {info.path() + ":" + draw.path(), ":/x:" + draw.path() + ":" + info.path()}) {
    copy.job.path = path;
    EXPECT_EQ(copy.run().status, 0) << path;
    unlink(copy.id.pdf().c_str());
  }
  // Without one the shell has its own.
  copy.job.path.reset();
  copy.job.arguments.insert(copy.job.arguments.begin(), {"-u", "PATH", VELKA_PDFCOPY});
  const bool inUsualPlace =
      TempFile::exists("/usr/bin/pdftoppm") && TempFile::exists("/usr/bin/pdfinfo");
  EXPECT_EQ(runFilter("/usr/bin/env", copy.job).status, inUsualPlace ? 0 : 1);
}

TEST(QueueCheck, StopsTheJobOfAQueueWithAnOlderPpd) {
  for (const std::string version : {"0.1", "0.0", "0.1.9", "0.x", "new"})
    for (const int model : {1, 2}) {
      CopyJob copy("version");
      const TempFile ppd(ppdText(
          {.modelNumber = model, .options = {}, .pdfPreprocess = true, .fileVersion = version}));
      const Environment printer("PRINTER", "receipts");
      copy.job.ppd = ppd.path();
      expectStoppedSaying(
          copy, copy.run(),
          "The PPD of this queue is older (" + version +
              ") than its filters (" VELKA_PPD_VERSION
              "), so pages could come out white. Print the job again after: lpadmin -p "
              "receipts -m velka/velka-" +
              (model == 2 ? "orlo" : "standard") + ".ppd");
    }
}

TEST(QueueCheck, TakesThePpdOfALaterVersionAndOneWithout) {
  const std::string here = VELKA_PPD_VERSION;
  for (const std::string& version :
       {here, here + ".0", here + ".7", here + "0", std::string("99.0"), std::string()}) {
    CopyJob copy("later");
    const TempFile ppd(
        ppdText({.modelNumber = 1, .options = {}, .pdfPreprocess = true, .fileVersion = version}));
    copy.job.ppd = ppd.path();
    EXPECT_EQ(copy.run().status, 0) << version;
  }
}

TEST(QueueCheck, LetsJobsPassThatPrintTheRaster) {
  CopyJob copy("raster", false);
  const TempFile ppd(ppdText({.modelNumber = 1, .options = {}, .fileVersion = "0.1"}));
  copy.job.ppd = ppd.path();
  copy.job.path = "/nonexistent";
  const FilterResult result = copy.run();
  EXPECT_EQ(result.status, 0) << result.errors;
  EXPECT_EQ(result.output, copy.job.input);
}

#ifdef VELKA_PPD_FOLDER
TEST(QueueCheck, TakesThePpdsOfThisBuild) {
  for (const char* model : {"standard", "orlo"}) {
    CopyJob copy("build");
    copy.job.ppd = std::string(VELKA_PPD_FOLDER) + "/velka-" + model + ".ppd";
    copy.job.arguments[4] = "PdfPreprocess=yes";
    const FilterResult result = copy.run();
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(textOf(copy.id.pdf()), asText(copy.job.input));
  }
}
#endif

}  // namespace
}  // namespace velka::testing
