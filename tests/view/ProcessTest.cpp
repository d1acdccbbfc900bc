#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>

#include "Process.h"
#include "support/Processes.h"
#include "support/TestPdf.h"

namespace velka::view {
namespace {

using testing::TempFolder;
using testing::textOf;
using testing::writeText;

Step shell(const TempFolder& folder, const std::string& script) {
  return {"/bin/sh",   {"-c", script}, {{"COLOUR", "red"}},
          "/dev/null", folder / "out", folder / "errors"};
}

TEST(Process, RunsWithItsArgumentsEnvironmentAndFiles) {
  const TempFolder folder;
  const SignalsHeld held;
  writeText(folder / "in", "input ");
  Step step = shell(folder, "cat; echo $COLOUR$0");
  step.input = folder / "in";
  step.arguments.emplace_back("; exit 3");
  EXPECT_FALSE(runStep(step, held).has_value());
  EXPECT_EQ(textOf(folder / "out"), "input red; exit 3\n");
}

TEST(Process, AFailureIsToldWithTheLastWordsThatMatter) {
  const TempFolder folder;
  const SignalsHeld held;
  const Step step = shell(folder, "echo first >&2; echo last >&2; echo DEBUG: x >&2; exit 7");
  EXPECT_EQ(runStep(step, held), "sh failed with status 7: last");
  EXPECT_EQ(runStep(shell(folder, "exit 1"), held), "sh failed with status 1");
  EXPECT_EQ(runStep(shell(folder, "kill -9 $$"), held), "sh was ended by signal 9");
}

TEST(Process, AnEmptyOutputIsAFailureUnlessItIsExpected) {
  const TempFolder folder;
  const SignalsHeld held;
  Step step = shell(folder, "echo The PPD file could not be opened. >&2");
  EXPECT_EQ(runStep(step, held), "sh wrote nothing: The PPD file could not be opened.");
  step.mayBeSilent = true;
  EXPECT_FALSE(runStep(step, held).has_value());
}

TEST(Process, AMissingProgramIsTold) {
  const TempFolder folder;
  const SignalsHeld held;
  Step step = shell(folder, "");
  step.program = "/nowhere/tool";
  EXPECT_EQ(runStep(step, held), "/nowhere/tool: No such file or directory");
}

TEST(Process, OneThatIsNotWantedAnyMoreIsEndedWithAllThatItStarted) {
  const TempFolder folder;
  const SignalsHeld held;
  Step step = shell(folder, "sleep 100000 & echo $! >&2; wait");
  step.unwanted = [&] { return textOf(folder / "errors").ends_with("\n"); };
  for (const int ending : {SIGKILL, SIGTERM}) {
    step.ending = ending;
    std::filesystem::remove(folder / "errors");
    EXPECT_EQ(runStep(step, held), "sh was interrupted");
    const pid_t child = std::stoi(textOf(folder / "errors"));
    // Whoever takes the orphan over may need a moment for it.
    EXPECT_TRUE(velka::testing::ends(child));
  }
}

// A process may end between the look for it and the look at it.
TEST(TextOf, WhatCannotBeReadIsNone) {
  EXPECT_EQ(textOf("/proc/self/mem"), "");
  EXPECT_EQ(textOf("/nowhere"), "");
}

TEST(Process, ASignalToUsEndsTheProgramToo) {
  const TempFolder folder;
  struct sigaction before {};
  struct sigaction ignore {};
  ignore.sa_handler = [](int) {};
  ASSERT_EQ(sigaction(SIGTERM, &ignore, &before), 0);
  {
    const SignalsHeld held;
    ASSERT_EQ(raise(SIGTERM), 0);
    // Were it not ended, this would outlast the test's time limit.
    EXPECT_EQ(runStep(shell(folder, "exec sleep 100000"), held), "sh was interrupted");
  }
  ASSERT_EQ(sigaction(SIGTERM, &before, nullptr), 0);
}

}  // namespace
}  // namespace velka::view
