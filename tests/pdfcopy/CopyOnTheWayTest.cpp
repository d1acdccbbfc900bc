// The copy while the job is on its way, and jobs that end there.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "OwnFile.h"
#include "pdfcopy/CopyFixture.h"

namespace velka::testing {
namespace {

// The filter between two pipes that the test holds.
class RunningCopy {
 public:
  explicit RunningCopy(const CopyJob& copy) {
    int in[2] = {-1, -1};
    int out[2] = {-1, -1};
    if (pipe2(in, O_CLOEXEC) != 0 || pipe2(out, O_CLOEXEC) != 0) return;
    pid_ = fork();
    if (pid_ == 0) become(copy.job, in[0], out[1]);
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
  [[noreturn]] static void become(const FilterJob& job, int in, int out) {
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

TEST(CopyOnTheWay, IsCompleteBeforeTheFirstByteGoesOut) {
  CopyJob copy("order");
  RunningCopy filter(copy);
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

TEST(CopyOnTheWay, GoesWithAJobThatIsCancelledBeforeItIsComplete) {
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
    CopyJob copy("early");
    const RunningCopy filter(copy);
    filter.send(copy.job.input);
    EXPECT_TRUE(hasHiddenFile(copy));
    filter.end(signal);
    EXPECT_EQ(filter.status(), 1);
    EXPECT_TRUE(filesOf(copy.id.text()).empty());
  }
}

TEST(CopyOnTheWay, GoesWithAJobThatIsCancelledWhileItIsPassedOn) {
  CopyJob copy("late");
  RunningCopy filter(copy);
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
