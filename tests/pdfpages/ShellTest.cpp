// Running the tools.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "ShellCommand.h"
#include "support/Capture.h"

namespace velka::testing {
namespace {

TEST(Shell, GivesTheCommandNothingOfOurs) {
  const Capture out(STDOUT_FILENO);
  const Capture err(STDERR_FILENO);
  EXPECT_EQ(WEXITSTATUS(runShell("echo out; echo err >&2; read x && exit 1; exit 5")), 5);
  EXPECT_EQ(outputOfShell("echo text; echo err >&2", 100), "text\n");
  EXPECT_EQ(outputOfShell("echo text", 2), "te");
  EXPECT_EQ(out.bytes(), Bytes{});
  EXPECT_EQ(err.bytes(), Bytes{});
  EXPECT_EQ(write(STDOUT_FILENO, "x", 1), 1);
  EXPECT_EQ(out.bytes(), Bytes{'x'});
}

}  // namespace
}  // namespace velka::testing
