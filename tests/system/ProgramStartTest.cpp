// Programs that are started: what they are told, what they find open, what reaches them.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <string>

#include "Descriptor.h"
#include "ProgramStart.h"
#include "SignalsHeldBack.h"

namespace {

using velka::environmentWith;
using velka::ProgramStart;
using velka::ProgramWords;
using velka::UniqueFd;

const std::array<std::string, 2> kShell{"sh", "-c"};

struct Ended {
  int error = 0;
  int status = -1;
  std::string said;
};

// Runs a line of shell whose standard output is read to its end.
Ended run(ProgramStart& start, const std::string& line, ProgramWords environment) {
  Ended ended;
  int ends[2] = {-1, -1};
  ended.error = pipe2(ends, O_CLOEXEC) == 0 ? 0 : errno;
  const UniqueFd read(ends[0]);
  UniqueFd write(ends[1]);
  start.place(write.get(), STDOUT_FILENO);
  ProgramWords words(kShell);
  words.add(line);
  pid_t child = 0;
  if (ended.error == 0) ended.error = start.run(child, "/bin/sh", words.get(), environment.get());
  if (ended.error != 0) return ended;
  write = UniqueFd();
  std::array<uint8_t, 4096> text{};
  ended.said.assign(reinterpret_cast<const char*>(text.data()), velka::readAll(read.get(), text));
  waitpid(child, &ended.status, 0);
  return ended;
}

Ended run(ProgramStart& start, const std::string& line) {
  return run(start, line, environmentWith({}));
}

TEST(ProgramWords, StandAsTheyWereAddedWithANullBehind) {
  ProgramWords words(kShell);
  words.add("a b");
  char* const* all = words.get();
  EXPECT_STREQ(all[0], "sh");
  EXPECT_STREQ(all[2], "a b");
  EXPECT_EQ(all[3], nullptr);
  words.add("");
  all = words.get();
  EXPECT_STREQ(all[0], "sh");
  EXPECT_STREQ(all[3], "");
  EXPECT_EQ(all[4], nullptr);
}

TEST(Environment, HasEachNameOnceWithTheValueThatIsWanted) {
  setenv("INHERITED_A", "old", 1);
  setenv("INHERITED_AB", "kept", 1);
  const std::array<std::pair<std::string, std::string>, 2> values{
      {{"INHERITED_A", "new=er"}, {"INHERITED_C", ""}}};
  ProgramStart start;
  const Ended ended = run(start, "env | grep ^INHERITED_ | LC_ALL=C sort", environmentWith(values));
  EXPECT_EQ(ended.said, "INHERITED_A=new=er\nINHERITED_AB=kept\nINHERITED_C=\n");
}

TEST(ProgramStart, WithoutItsDescriptorsAProgramIsNotStarted) {
  ProgramStart start;
  start.open(-1, "/dev/null", O_RDONLY);
  start.place(0, 1);
  EXPECT_EQ(run(start, "echo started").error, EBADF);
}

TEST(ProgramStart, AProgramThatIsNotThereLeavesTheNumberAsItWas) {
  ProgramWords words(kShell);
  ProgramWords environment;
  pid_t child = -1;
  EXPECT_EQ(ProgramStart().run(child, "/nowhere/sh", words.get(), environment.get()), ENOENT);
  EXPECT_EQ(child, -1);
}

TEST(ProgramStart, FindsAProgramInThePath) {
  ProgramWords words(kShell);
  words.add("exit 3");
  ProgramWords environment;
  pid_t child = -1;
  ASSERT_EQ(ProgramStart().runFromPath(child, "sh", words.get(), environment.get()), 0);
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_EQ(WEXITSTATUS(status), 3);
}

TEST(ProgramStart, ClosesWhatIsNotItsOwn) {
  const UniqueFd left(fcntl(STDIN_FILENO, F_DUPFD, 40));
  ASSERT_TRUE(left);
  const std::string look =
      "if [ -e /proc/self/fd/" + std::to_string(left.get()) + " ]; then echo open; fi";
  ProgramStart keeps;
  EXPECT_EQ(run(keeps, look).said, "open\n");
  ProgramStart closes;
  // Where run() has put the pipe's end is known only later, so it stands first.
  closes.open(STDIN_FILENO, "/dev/null", O_RDONLY);
  closes.closeFrom(left.get());
  EXPECT_EQ(run(closes, look).said, "");
}

TEST(ProgramStart, SignalsAreHeldBackAndIgnoredAsAsked) {
  const velka::SignalsHeldBack held({SIGTERM});
  const std::string end = "kill -TERM $$; echo lives";
  ProgramStart asWe;
  EXPECT_EQ(run(asWe, end).said, "lives\n");
  ProgramStart none;
  none.holdBackNone();
  EXPECT_EQ(WTERMSIG(run(none, end).status), SIGTERM);
  ProgramStart before;
  before.holdBack(held.before());
  EXPECT_EQ(WTERMSIG(run(before, end).status), SIGTERM);
}

TEST(ProgramStart, IgnoredSignalsGetTheirUsualWay) {
  const auto old = std::signal(SIGUSR1, SIG_IGN);
  const std::string end = "kill -USR1 $$; echo lives";
  ProgramStart asWe;
  EXPECT_EQ(run(asWe, end).said, "lives\n");
  ProgramStart usual;
  usual.holdBackNone();
  usual.usualWayFor({SIGUSR1});
  EXPECT_EQ(WTERMSIG(run(usual, end).status), SIGUSR1);
  std::signal(SIGUSR1, old);
}

TEST(ProgramStart, AGroupOfItsOwnIsItsNumber) {
  const std::string tell = "read -r _ _ _ _ group _ </proc/$$/stat; echo $((group == $$))";
  ProgramStart ours;
  EXPECT_EQ(run(ours, tell).said, "0\n");
  ProgramStart own;
  own.inOwnGroup();
  EXPECT_EQ(run(own, tell).said, "1\n");
}

}  // namespace
