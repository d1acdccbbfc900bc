// Pictures get a PDF that the print system's own filter makes.
#include <gtest/gtest.h>

#include <csignal>
#include <thread>

#include "pdfcopy/CopyFixture.h"

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
    if (!script.empty()) folder_.addScript("filter/imagetopdf", script);
    job.input = somePicture();
  }
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
  EXPECT_NE(result.errors.find("\nINFO: Making a PDF of the picture\n"), std::string::npos);
}

TEST(PictureCopy, TakesThePictureFromTheNamedFileAndHandsItOverAsStandardInput) {
  PictureJob copy("named", "echo $#; cat");
  const TempFile file(asText(somePicture()), ".png");
  copy.job.arguments.push_back(file.path());
  copy.job.input = {};
  const FilterResult result = copy.run();
  EXPECT_EQ(result.status, 0) << result.errors;
  EXPECT_EQ(result.output, somePicture());
  EXPECT_EQ(textOf(copy.id.pdf()), "5\n" + asText(somePicture()));
}

TEST(PictureCopy, IsAPdfsOwnBytesWhereTheHeaderComesLate) {
  PictureJob copy("late", "exit 1");
  copy.job.input = somePdf();
  copy.job.input.insert(copy.job.input.begin(), 1000, '\n');
  const FilterResult result = copy.run();
  EXPECT_EQ(result.status, 0) << result.errors;
  EXPECT_EQ(textOf(copy.id.pdf()), asText(copy.job.input));
}

TEST(PictureCopy, StopsTheJobWhenNoPdfCanBeMade) {
  const struct {
    const char* script;
    const char* message;
  } cases[] = {{"cat; exit 3", "made no PDF of the picture, its status is 3"},
               {"kill -9 $$", "made no PDF of the picture, its status is 137"},
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

TEST(PictureCopy, IsNotMadeWhereThePagesComeFromTheRaster) {
  PictureJob copy("raster", "exit 1");
  copy.job.arguments[4] = "PdfPreprocess=no";
  const FilterResult result = copy.run();
  EXPECT_EQ(result.status, 0) << result.errors;
  EXPECT_EQ(result.output, somePicture());
  EXPECT_TRUE(filesOf(copy.id.text()).empty());
}

TEST(PictureCopy, EndsTheConverterWithTheJob) {
  PictureJob copy("cancelled",
                  "trap 'echo told >\"$(dirname \"$0\")/../note\"; exit 1' TERM\n"
                  "echo ready >\"$(dirname \"$0\")/../note\"; while :; do :; done");
  copy.job.feed = [&](int pid, int input) {
    const Bytes picture = somePicture();
    EXPECT_EQ(write(input, picture.data(), picture.size()), static_cast<ssize_t>(picture.size()));
    close(input);
    while (textOf(copy.note()) != "ready\n") std::this_thread::yield();
    kill(pid, SIGTERM);
  };
  EXPECT_EQ(copy.run().status, 1);
  EXPECT_TRUE(filesOf(copy.id.text()).empty());
  while (textOf(copy.note()) != "told\n") std::this_thread::yield();
}

}  // namespace
}  // namespace velka::testing
