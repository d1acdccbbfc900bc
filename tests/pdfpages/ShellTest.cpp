// Running the tools: what they get, what they may take, who ends them.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>

#include "ShellCommand.h"
#include "support/Processes.h"
#include "support/TestPdf.h"

namespace velka::testing {
namespace {

volatile std::sig_atomic_t cancelled = 0;

void cancel(int /*signal*/) {
  cancelled = 1;
}

// A handler of SIGTERM as the filter has it.
class Shell : public ::testing::Test {
 protected:
  void SetUp() override {
    cancelled = 0;
    struct sigaction action = {};
    action.sa_handler = cancel;
    action.sa_flags = SA_RESTART;
    sigaction(SIGTERM, &action, &before_);
  }
  void TearDown() override { sigaction(SIGTERM, &before_, nullptr); }

  [[nodiscard]] ToolEnd run(const std::string& command) const {
    return runShell(command.c_str(), {limits_, cancelled});
  }
  [[nodiscard]] static std::string output(const std::string& command, size_t most) {
    std::string text;
    EXPECT_EQ(readShell(command.c_str(), {kDrawingLimits, cancelled}, most, text).status, 0);
    return text;
  }
  // The number that a command has left in a file.
  [[nodiscard]] int number(const std::string& name) const {
    return std::atoi(textOf(folder_ / name).c_str());
  }
  [[nodiscard]] std::string mark(const std::string& name) const { return folder_ / name; }

  ToolLimits limits_ = kDrawingLimits;

 private:
  TempFolder folder_;
  struct sigaction before_ = {};
};

// A set of signals, bit by bit, in what the kernel tells of a process.
uint64_t signalsOf(const std::string& status, const std::string& set) {
  const size_t at = status.find(set + ":\t");
  return at == std::string::npos ? ~uint64_t{0}
                                 : std::stoull(status.substr(at + set.size() + 2), nullptr, 16);
}

TEST_F(Shell, GivesTheCommandNothingOfOurs) {
  const Capture out(STDOUT_FILENO);
  const Capture err(STDERR_FILENO);
  EXPECT_EQ(WEXITSTATUS(run("echo out; echo err >&2; read x && exit 1; exit 5").status), 5);
  EXPECT_EQ(output("echo text; echo err >&2", 100), "text\n");
  EXPECT_EQ(output("echo text", 2), "te");
  EXPECT_EQ(out.bytes(), Bytes{});
  EXPECT_EQ(err.bytes(), Bytes{});
  EXPECT_EQ(write(STDOUT_FILENO, "x", 1), 1);
  EXPECT_EQ(out.bytes(), Bytes{'x'});
}

TEST_F(Shell, StatusIsWhatSystemWouldReturn) {
  for (const char* command : {"true", "exit 3", "kill -9 $$", "/nonexistent"})
    EXPECT_EQ(run(command).status, std::system((std::string(command) + " 2>/dev/null").c_str()))
        << command;
}

// The filter ignores two of them, and holds one back while it starts the command.
TEST_F(Shell, GivesTheCommandTheUsualSignals) {
  const auto pipe = std::signal(SIGPIPE, SIG_IGN);
  const auto size = std::signal(SIGXFSZ, SIG_IGN);
  const std::string status = output("cat /proc/self/status", 100000);
  std::signal(SIGPIPE, pipe);
  std::signal(SIGXFSZ, size);
  EXPECT_EQ(signalsOf(status, "SigBlk"), 0U);
  for (const int usual : {SIGPIPE, SIGXFSZ, SIGCHLD, SIGTERM})
    EXPECT_EQ(signalsOf(status, "SigIgn") >> (usual - 1) & 1U, 0U) << usual;
}

TEST_F(Shell, EndsACommandWhoseTimeIsOver) {
  limits_.time = std::chrono::milliseconds(0);
  const ToolEnd end = run("sleep 600");
  EXPECT_TRUE(end.late);
  EXPECT_TRUE(WIFSIGNALED(end.status));
  EXPECT_EQ(WTERMSIG(end.status), SIGKILL);
}

TEST_F(Shell, WaitsForACommandThatIsInTime) {
  const ToolEnd end = run("sleep 0.2; exit 7");
  EXPECT_FALSE(end.late);
  EXPECT_EQ(WEXITSTATUS(end.status), 7);
}

TEST_F(Shell, EndsAllThatTheCommandHasStartedWhenTheJobIsCancelled) {
  const ToolEnd end =
      run("trap '' TERM; sleep 600 & echo $! >" + mark("child") + "; echo $$ >" + mark("shell") +
          "; kill -TERM " + std::to_string(getpid()) + "; sleep 600; echo late >" + mark("late"));
  EXPECT_EQ(WTERMSIG(end.status), SIGKILL);
  EXPECT_FALSE(end.late);
  EXPECT_FALSE(TempFile::exists(mark("late")));
  ASSERT_GT(number("child"), 0);
  EXPECT_TRUE(ends(number("child")));
  EXPECT_TRUE(ends(number("shell")));
}

TEST_F(Shell, StartsNothingOnceTheJobIsCancelled) {
  cancelled = 1;
  EXPECT_EQ(run("touch " + mark("started")).status, -1);
  EXPECT_FALSE(TempFile::exists(mark("started")));
}

// Also where the filter itself ignores the signal.
TEST_F(Shell, EndsACommandAtAFileThatGrowsTooLarge) {
  const auto before = std::signal(SIGXFSZ, SIG_IGN);
  limits_.fileBytes = 5000;
  const ToolEnd end = run("head -c 100000 /dev/zero >" + mark("file") + "; exit $?");
  std::signal(SIGXFSZ, before);
  EXPECT_EQ(WEXITSTATUS(end.status), 128 + SIGXFSZ);
  EXPECT_EQ(textOf(mark("file")).size(), 5000U);
}

TEST_F(Shell, LeavesNoCoreBehind) {
  EXPECT_EQ(output("ulimit -c", 100), "0\n");
}

TEST_F(Shell, RefusesACommandTooMuchMemory) {
  limits_.memoryBytes = uint64_t{100} << 20U;
  EXPECT_NE(run("dd if=/dev/zero of=/dev/null bs=200M count=1").status, 0);
  EXPECT_EQ(run("dd if=/dev/zero of=/dev/null bs=1M count=1").status, 0);
}

TEST_F(Shell, KeepsNarrowerLimitsThatAreThere) {
  const pid_t child = fork();
  if (child == 0) {
    const rlimit narrow = {5000, 5000};
    setrlimit(RLIMIT_FSIZE, &narrow);
    _exit(run("head -c 100000 /dev/zero >" + mark("file")).status != 0 ? 0 : 1);
  }
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(textOf(mark("file")).size(), 5000U);
}

// With ours it would write to the printer.
TEST_F(Shell, RunsNothingWhereNoDescriptorIsLeft) {
  const std::string command = "touch " + mark("started");
  const ToolWatch watch{kDrawingLimits, cancelled};
  const pid_t child = fork();
  if (child == 0) {
    // Nothing else of the test's here: the sanitizers' own checks want descriptors.
    const rlimit few = {20, 20};
    setrlimit(RLIMIT_NOFILE, &few);
    while (dup(STDERR_FILENO) >= 0) continue;
    _exit(runShell(command.c_str(), watch).status == -1 ? 0 : 1);
  }
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  EXPECT_FALSE(TempFile::exists(mark("started")));
}

// The command's own descriptors are the last that the child cannot have: without a check
// it would run with those of ours that are left.
TEST_F(Shell, RunsNothingThatDoesNotGetItsDescriptors) {
  const ToolWatch watch{kDrawingLimits, cancelled};
  const pid_t child = fork();
  if (child == 0) {
    // /dev/null becomes descriptor 0, and 2 lies beyond the limit.
    const rlimit few = {2, 2};
    close(STDIN_FILENO);
    close(STDOUT_FILENO);
    setrlimit(RLIMIT_NOFILE, &few);
    const int status = runShell("true", watch).status;
    _exit(WIFEXITED(status) ? WEXITSTATUS(status) : 0);
  }
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(WEXITSTATUS(status), kNoDescriptors);
}

// Killed outright it can end nothing itself.
TEST_F(Shell, EndsTheToolWithTheProcessThatRunsIt) {
  const pid_t child = fork();
  if (child == 0) {
    static_cast<void>(run("exec sh -c 'echo $$ >" + mark("tool.new") + " && mv " +
                          mark("tool.new") + " " + mark("tool") + "; exec sleep 600'"));
    _exit(0);
  }
  EXPECT_TRUE(eventually([&] { return number("tool") != 0; }));
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
  ASSERT_GT(number("tool"), 0);
  EXPECT_TRUE(ends(number("tool")));
}

}  // namespace
}  // namespace velka::testing
