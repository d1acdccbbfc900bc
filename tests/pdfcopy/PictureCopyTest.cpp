// Pictures get a PDF that the print system's own filter makes.
#include <gtest/gtest.h>

#include <csignal>

#include "DocumentKind.h"
#include "pdfcopy/CopyFixture.h"
#include "support/Eventually.h"

namespace velka::testing {
namespace {

Bytes somePicture() {
  Bytes bytes = somePdf();
  bytes[0] = 0x89;
  return bytes;
}

// A picture job whose converter is a script; without one there is no converter.
class PictureJob : public CopyJob {
 public:
  explicit PictureJob(const std::string& name, const std::string& script = "")
      : CopyJob(name), folder_({"cat", "rm"}), serverBin_("CUPS_SERVERBIN", folder_.path()) {
    std::filesystem::create_directory(folder_.path() + "/filter");
    if (!script.empty()) addConverter("imagetopdf", script);
    job.input = somePicture();
  }
  void addConverter(const std::string& name, const std::string& script) const {
    folder_.addScript("filter/" + name, script);
  }
  [[nodiscard]] std::string folder() const { return folder_.path(); }
  [[nodiscard]] std::string note() const { return folder_.path() + "/note"; }

 private:
  ToolFolder folder_;
  Environment serverBin_;
};

TEST(PictureCopy, IsThePdfThatThePrintSystemMakesOfThePicture) {
  PictureJob copy("picture", "echo '%PDF-'; for a; do echo \"<$a>\"; done; cat");
  copy.job.arguments[2] = "a title";
  copy.job.arguments[4] = "Collate=True";
  const FilterResult result = copy.run();
  EXPECT_EQ(result.status, 0) << result.errors;
  EXPECT_EQ(result.output, somePicture());
  EXPECT_EQ(textOf(copy.id.pdf()), "%PDF-\n<" + copy.id.text() +
                                       ">\n<user>\n<a title>\n<1>\n<Collate=True>\n" +
                                       asText(somePicture()));
  EXPECT_NE(result.errors.find("\nINFO: Making a PDF of the document\n"), std::string::npos);
}

TEST(PictureCopy, TakesThePictureFromTheNamedFileAndHandsItOverAsStandardInput) {
  PictureJob copy("named", "echo '%PDF-'; echo $#; cat");
  const TempFile file(asText(somePicture()), ".png");
  copy.job.arguments.push_back(file.path());
  copy.job.input = {};
  const FilterResult result = copy.run();
  EXPECT_EQ(result.status, 0) << result.errors;
  EXPECT_EQ(result.output, somePicture());
  EXPECT_EQ(textOf(copy.id.pdf()), "%PDF-\n5\n" + asText(somePicture()));
}

TEST(PdfCopy, IsThePdfsOwnBytesWhereItsHeaderComesLate) {
  PictureJob copy("late", "exit 1");
  copy.job.input = somePdf();
  copy.job.input.insert(copy.job.input.begin(), 1000, '\n');
  const FilterResult result = copy.run();
  EXPECT_EQ(result.status, 0) << result.errors;
  EXPECT_EQ(textOf(copy.id.pdf()), asText(copy.job.input));
}

// A set of signals, bit by bit, in what the kernel tells of a process.
uint64_t signalsOf(const std::string& status, const std::string& set) {
  const size_t at = status.find(set + ":\t");
  return at == std::string::npos ? ~uint64_t{0}
                                 : std::stoull(status.substr(at + set.size() + 2), nullptr, 16);
}

TEST(PictureCopy, GivesTheConverterTheUsualSignals) {
  PictureJob copy("signals", "echo '%PDF-'; exec cat /proc/self/status");
  EXPECT_EQ(copy.run().status, 0);
  const std::string status = textOf(copy.id.pdf());
  EXPECT_EQ(signalsOf(status, "SigBlk"), 0U);
  for (const int usual : {SIGPIPE, SIGXFSZ, SIGCHLD, SIGTERM, SIGINT, SIGHUP})
    EXPECT_EQ(signalsOf(status, "SigIgn") >> (usual - 1) & 1U, 0U) << usual;
}

TEST(PictureCopy, StopsTheJobWhenNoPdfCanBeMade) {
  const struct {
    const char* script;
    const char* message;
  } cases[] = {{"cat; exit 3", "made no PDF of the document, its status is 3"},
               {"cat", "made no PDF of the document, its status is 0"},
               {"true", "made no PDF of the document, its status is 0"},
               {"kill -9 $$", "made no PDF of the document, its status is 137"},
               {"", "Cannot run "}};
  for (const auto& [script, message] : cases) {
    PictureJob copy("fails", script);
    const FilterResult result = copy.run();
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.output.empty());
    EXPECT_NE(result.errors.find(message), std::string::npos) << result.errors;
    EXPECT_TRUE(filesOf(copy.id.text()).empty());
  }
}

TEST(PictureCopy, StopsTheJobAlsoWhereTheCallerIgnoresItsChildren) {
  PictureJob copy("children", "echo '%PDF-'; exit 3");
  copy.job.arguments.insert(copy.job.arguments.begin(), {"--ignore-signal=CHLD", VELKA_PDFCOPY});
  const FilterResult result = runFilter("/usr/bin/env", copy.job);
  EXPECT_EQ(result.status, 1);
  EXPECT_NE(result.errors.find("its status is 3"), std::string::npos) << result.errors;
  EXPECT_TRUE(filesOf(copy.id.text()).empty());
}

TEST(PictureCopy, StopsTheJobWhereNobodyKnowsThePrintSystemsFilters) {
  CopyJob copy("nowhere");
  copy.job.input = somePicture();
  copy.job.arguments.insert(copy.job.arguments.begin(), {"-u", "CUPS_SERVERBIN", VELKA_PDFCOPY});
  const FilterResult result = runFilter("/usr/bin/env", copy.job);
  EXPECT_EQ(result.status, 1);
  EXPECT_NE(result.errors.find("\nERROR: CUPS_SERVERBIN is not set, so imagetopdf cannot be run\n"),
            std::string::npos)
      << result.errors;
  EXPECT_TRUE(filesOf(copy.id.text()).empty());
}

TEST(PictureCopy, KeepsThePictureInTheFolderForTemporaryFilesAndStopsTheJobWithoutOne) {
  PictureJob copy("folder", "echo '%PDF-'; cat");
  copy.job.environment.emplace_back("TMPDIR", copy.folder());
  EXPECT_EQ(copy.run().output, somePicture());
  unlink(copy.id.pdf().c_str());
  copy.job.environment.back().second = "/nonexistent";
  const FilterResult result = copy.run();
  EXPECT_EQ(result.status, 1);
  EXPECT_TRUE(result.output.empty());
  EXPECT_NE(result.errors.find("\nERROR: Cannot make a temporary file: No such file"),
            std::string::npos)
      << result.errors;
  EXPECT_TRUE(filesOf(copy.id.text()).empty());
}

TEST(PostScriptCopy, IsThePdfThatThePrintSystemMakesOfIt) {
  PictureJob copy("postscript");
  copy.addConverter("gstopdf", "echo '%PDF-'; cat");
  copy.job.input = {'%', '!', 'P', 'S', '\n'};
  const FilterResult result = copy.run();
  EXPECT_EQ(result.status, 0) << result.errors;
  EXPECT_EQ(result.output, copy.job.input);
  EXPECT_EQ(textOf(copy.id.pdf()), "%PDF-\n%!PS\n");
}

TEST(DocumentKinds, AreToldByTheFirstBytes) {
  EXPECT_EQ(documentKind("%PDF-1.4\n"), DocumentKind::Pdf);
  EXPECT_EQ(documentKind("@PJL ENTER LANGUAGE=PDF\r\n%PDF-1.4\n"), DocumentKind::Pdf);
  EXPECT_EQ(documentKind("%!PS-Adobe-3.0\n%PDF-1.4\n"), DocumentKind::Pdf);
  EXPECT_EQ(documentKind("%!PS-Adobe-3.0\n"), DocumentKind::PostScript);
  EXPECT_EQ(documentKind("P6\n# made from %PDF-1.4\n"), DocumentKind::Picture);
  EXPECT_EQ(documentKind("%PDF"), DocumentKind::Picture);
  for (const char* const start : {"\n%PDF-", "\r%PDF-", "x\n%PDF-", "x\r%PDF-"})
    EXPECT_EQ(documentKind(start), DocumentKind::Pdf) << start;
  for (const char* const start : {"x%PDF-", "\nx%PDF-", "\rx%PDF-"})
    EXPECT_EQ(documentKind(start), DocumentKind::Picture) << start;
  EXPECT_EQ(documentKind(""), DocumentKind::Picture);
}

TEST(PictureCopy, IsNotMadeWhereThePagesComeFromTheRaster) {
  PictureJob copy("raster", "exit 1");
  copy.job.arguments[4] = "PdfPreprocess=no";
  const FilterResult result = copy.run();
  EXPECT_EQ(result.status, 0) << result.errors;
  EXPECT_EQ(result.output, somePicture());
  EXPECT_TRUE(filesOf(copy.id.text()).empty());
}

bool waitForNote(const PictureJob& copy, const std::string& text) {
  return eventually([&] { return textOf(copy.note()) == text; });
}

TEST(PictureCopy, EndsTheConverterWithTheJob) {
  PictureJob copy("cancelled",
                  "trap 'echo told >\"$(dirname \"$0\")/../note\"; exit 1' TERM\n"
                  "echo ready >\"$(dirname \"$0\")/../note\"; rounds=0; "
                  "while [ $rounds -lt 600 ]; do rounds=$((rounds + 1)); sleep 0.1; done");
  copy.job.feed = [&](int pid, int input) {
    const Bytes picture = somePicture();
    EXPECT_EQ(write(input, picture.data(), picture.size()), static_cast<ssize_t>(picture.size()));
    close(input);
    EXPECT_TRUE(waitForNote(copy, "ready\n"));
    kill(pid, SIGTERM);
  };
  EXPECT_EQ(copy.run().status, 1);
  EXPECT_TRUE(filesOf(copy.id.text()).empty());
  EXPECT_TRUE(waitForNote(copy, "told\n"));
}

}  // namespace
}  // namespace velka::testing
