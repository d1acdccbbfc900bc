// The copy while the job is on its way, and jobs that end there.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <csignal>

#include "Descriptor.h"
#include "pdfcopy/CopyFixture.h"
#include "support/Eventually.h"
#include "support/NoNamelessFiles.h"

namespace velka::testing {
namespace {

// Whether the file system of /tmp has nameless files, or plays one that has none.
enum class Files : uint8_t { AsTheyAre, NoneNameless };

// The filter between two pipes that the test holds.
class RunningCopy {
 public:
  explicit RunningCopy(const CopyJob& copy, Files files = Files::AsTheyAre) {
    int in[2] = {-1, -1};
    int out[2] = {-1, -1};
    if (pipe2(in, O_CLOEXEC) != 0 || pipe2(out, O_CLOEXEC) != 0) return;
    pid_ = fork();
    if (pid_ == 0) become(copy.job, in[0], out[1], files);
    close(in[0]);
    close(out[1]);
    toFilter = UniqueFd(in[1]);
    fromFilter = UniqueFd(out[0]);
  }
  void end(int signal) const { kill(pid_, signal); }
  [[nodiscard]] int status() const {
    int status = 0;
    waitpid(pid_, &status, 0);
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
  }
  void send(const Bytes& bytes) const {
    EXPECT_EQ(write(toFilter.get(), bytes.data(), bytes.size()),
              static_cast<ssize_t>(bytes.size()));
  }
  [[nodiscard]] bool hasOutput() const {
    pollfd ready = {fromFilter.get(), POLLIN, 0};
    return poll(&ready, 1, 0) == 1;
  }
  [[nodiscard]] Bytes receive(size_t size) const {
    Bytes bytes(size);
    const ssize_t n = read(fromFilter.get(), bytes.data(), size);
    bytes.resize(n > 0 ? static_cast<size_t>(n) : 0);
    return bytes;
  }

  UniqueFd toFilter;
  UniqueFd fromFilter;

 private:
  [[noreturn]] static void become(const FilterJob& job, int in, int out, Files files) {
    if (files == Files::NoneNameless && !forbidNamelessFiles()) _exit(1);
    dup2(in, STDIN_FILENO);
    dup2(out, STDOUT_FILENO);
    std::string program = VELKA_PDFCOPY;
    std::vector<std::string> arguments = job.arguments;
    std::vector<char*> argv = {program.data()};
    for (std::string& argument : arguments) argv.push_back(argument.data());
    argv.push_back(nullptr);
    setenv("PPD", job.ppd->c_str(), 1);
    execv(program.c_str(), argv.data());
    _exit(127);
  }

  pid_t pid_ = -1;
};

// The name that the copy has until it is complete.
bool hasHiddenFile(const CopyJob& copy) {
  for (const std::string& name : filesOf(copy.id.text()))
    if ("/tmp/" + name != copy.id.pdf()) return true;
  return false;
}

// All bytes that were sent have been read.
bool isRead(const RunningCopy& filter) {
  return eventually([&] {
    int waiting = -1;
    return ioctl(filter.toFilter.get(), FIONREAD, &waiting) == 0 && waiting == 0;
  });
}

// Skips where the kernel cannot play such a file system.
bool canPlay(Files files) {
  if (files == Files::AsTheyAre) return true;
  const pid_t child = fork();
  if (child == 0) _exit(forbidNamelessFiles() && !tmpHasNamelessFiles() ? 0 : 1);
  int status = -1;
  return waitpid(child, &status, 0) == child && status == 0;
}

class CopyOnTheWay : public ::testing::TestWithParam<Files> {
 protected:
  void SetUp() override {
    if (!canPlay(GetParam())) GTEST_SKIP() << "the kernel plays no other file system";
  }
};
INSTANTIATE_TEST_SUITE_P(, CopyOnTheWay, ::testing::Values(Files::AsTheyAre, Files::NoneNameless),
                         [](const auto& instance) {
                           return instance.param == Files::AsTheyAre ? "AsTheyAre" : "NoneNameless";
                         });

TEST_P(CopyOnTheWay, IsCompleteBeforeTheFirstByteGoesOut) {
  CopyJob copy("order");
  RunningCopy filter(copy, GetParam());
  // More than a pipe takes: the filter has read part of it when this returns.
  filter.send(copy.job.input);
  EXPECT_FALSE(TempFile::exists(copy.id.pdf()));
  EXPECT_FALSE(filter.hasOutput());
  filter.toFilter = UniqueFd();
  ASSERT_EQ(filter.receive(1), Bytes{'%'});
  EXPECT_EQ(textOf(copy.id.pdf()), asText(copy.job.input));
  EXPECT_FALSE(hasHiddenFile(copy));
  while (!filter.receive(65536).empty()) continue;
  EXPECT_EQ(filter.status(), 0);
  EXPECT_TRUE(TempFile::exists(copy.id.pdf()));
}

TEST_P(CopyOnTheWay, GoesWithAJobThatIsCancelledBeforeItIsComplete) {
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
    CopyJob copy("early");
    const RunningCopy filter(copy, GetParam());
    filter.send(copy.job.input);
    EXPECT_EQ(hasHiddenFile(copy), GetParam() == Files::NoneNameless || !tmpHasNamelessFiles());
    filter.end(signal);
    EXPECT_EQ(filter.status(), 1);
    EXPECT_TRUE(filesOf(copy.id.text()).empty());
  }
}

TEST_P(CopyOnTheWay, ReplacesOneThatAnEarlierRunOfTheJobLeft) {
  CopyJob copy("again");
  for (int run = 0; run < 2; ++run) {
    copy.job.input.push_back('2');
    RunningCopy filter(copy, GetParam());
    filter.send(copy.job.input);
    filter.toFilter = UniqueFd();
    while (!filter.receive(65536).empty()) continue;
    const bool marked = getxattr(copy.id.pdf().c_str(), "user.velka.pdfcopy", nullptr, 0) >= 0;
    if (!marked) GTEST_SKIP() << "/tmp keeps no attributes";
    EXPECT_EQ(filter.status(), 0);
    EXPECT_EQ(textOf(copy.id.pdf()), asText(copy.job.input));
    EXPECT_EQ(filesOf(copy.id.text()).size(), 1U);
  }
}

TEST_P(CopyOnTheWay, IsNotMadeWhereItsNameIsTaken) {
  CopyJob copy("taken");
  writeText(copy.id.pdf(), "somebody's");
  RunningCopy filter(copy, GetParam());
  filter.send(copy.job.input);
  filter.toFilter = UniqueFd();
  EXPECT_TRUE(filter.receive(1).empty());
  EXPECT_EQ(filter.status(), 1);
  EXPECT_EQ(textOf(copy.id.pdf()), "somebody's");
  EXPECT_EQ(filesOf(copy.id.text()).size(), 1U);
}

// Its name for the time until it is complete is longer than the one it gets.
TEST(HiddenCopy, WhoseNameIsTooLongStopsTheJob) {
  if (!canPlay(Files::NoneNameless)) GTEST_SKIP() << "the kernel plays no other file system";
  CopyJob copy("long");
  copy.job.arguments[0] = std::string(230, '9');
  copy.job.beforeStart = [] { forbidNamelessFiles(); };
  const FilterResult result = copy.run();
  EXPECT_EQ(result.status, 1);
  EXPECT_TRUE(result.output.empty());
  EXPECT_NE(result.errors.find(".pdf: File name too long\n"), std::string::npos) << result.errors;
  EXPECT_TRUE(filesOf(copy.job.arguments[0]).empty());
}

TEST(KilledCopy, LeavesNothing) {
  if (!tmpHasNamelessFiles()) GTEST_SKIP() << "/tmp has no nameless files";
  CopyJob copy("killed");
  const RunningCopy filter(copy);
  filter.send(copy.job.input);
  ASSERT_TRUE(isRead(filter));
  filter.end(SIGKILL);
  EXPECT_EQ(filter.status(), 128 + SIGKILL);
  EXPECT_TRUE(filesOf(copy.id.text()).empty());
}

// What the document is stands in bytes of which the first read brings a few.
TEST(SlowCopy, KnowsADocumentWhoseHeadComesInPieces) {
  CopyJob copy("slow");
  const Environment noConverters("CUPS_SERVERBIN", "/nonexistent");
  RunningCopy filter(copy);
  const Bytes& pdf = copy.job.input;
  filter.send({pdf.begin(), pdf.begin() + 2});
  ASSERT_TRUE(isRead(filter));
  filter.send({pdf.begin() + 2, pdf.begin() + 100});
  ASSERT_TRUE(isRead(filter));
  filter.send({pdf.begin() + 100, pdf.end()});
  filter.toFilter = UniqueFd();
  while (!filter.receive(65536).empty()) continue;
  EXPECT_EQ(filter.status(), 0);
  EXPECT_TRUE(textOf(copy.id.pdf()) == asText(pdf));
}

TEST_P(CopyOnTheWay, GoesWithAJobThatIsCancelledWhileItIsPassedOn) {
  CopyJob copy("late");
  RunningCopy filter(copy, GetParam());
  filter.send(copy.job.input);
  filter.toFilter = UniqueFd();
  ASSERT_EQ(filter.receive(1), Bytes{'%'});
  ASSERT_TRUE(TempFile::exists(copy.id.pdf()));
  filter.end(SIGTERM);
  EXPECT_EQ(filter.status(), 1);
  EXPECT_TRUE(filesOf(copy.id.text()).empty());
}

}  // namespace
}  // namespace velka::testing
