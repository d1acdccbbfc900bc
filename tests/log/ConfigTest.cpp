// The configuration text: what it means, and how it reaches the loggers.
#include <sys/stat.h>

#include "LogConfig.h"
#include "LogTestSupport.h"

using logtest::Access;
using logtest::TempFolder;
using logtest::writeFile;
using velka::SettingCode;

namespace {

struct Parsed {
  SettingCode code;
  std::int64_t number;
  std::string text;
  bool operator==(const Parsed&) const = default;
};

/// The changes of the one section [Main] around `lines`.
std::vector<Parsed> parsed(const std::string& lines) {
  const auto sections = velka::parseConfig("[Main]\n" + lines);
  std::vector<Parsed> changes;
  for (const velka::SettingChange& change : sections.at(0).changes) {
    changes.push_back({change.code, change.number, change.text});
  }
  return changes;
}

}  // namespace

TEST(LogUpdate, IsDueAfterMoreThanItsInterval) {
  EXPECT_FALSE(velka::isUpdateDue(0, 10));
  EXPECT_FALSE(velka::isUpdateDue(10, 10));
  EXPECT_TRUE(velka::isUpdateDue(11, 10));
  EXPECT_FALSE(velka::isUpdateDue(INT32_MAX, INT32_MAX));
  EXPECT_TRUE(velka::isUpdateDue(std::int64_t{INT32_MAX} + 1, INT32_MAX));
  // A negative interval has always passed.
  EXPECT_TRUE(velka::isUpdateDue(0, -1));
}

TEST(LogUpdate, IsNeverDueWithoutAnInterval) {
  for (const std::int64_t passed : {INT64_MIN, std::int64_t{0}, std::int64_t{1}, INT64_MAX}) {
    EXPECT_FALSE(velka::isUpdateDue(passed, 0));
  }
}

TEST(LogUpdate, ReadsTheFileOnceAnIntervalAndNeverWithoutOne) {
  // Before any time that the clock of a running system shows.
  constexpr std::int64_t kLongAgo = -2'000'000;
  const TempFolder folder;
  const std::string path = folder.file("log.cfg");
  writeFile(path, "");
  LogerManager manager;
  ASSERT_TRUE(manager.config(path.c_str()));
  writeFile(path, "[late]\nenable=1\n");
  std::int64_t lastCheck = kLongAgo;
  Access::autoUpdate(manager, lastCheck);
  EXPECT_EQ(lastCheck, kLongAgo);
  EXPECT_EQ(manager.findLogger("late"), -1);
  EXPECT_TRUE(manager.setAutoUpdate(1'000'000));
  Access::autoUpdate(manager, lastCheck);
  EXPECT_GE(lastCheck, 0);
  EXPECT_EQ(manager.findLogger("late"), 1);
  writeFile(path, "[later]\nenable=1\n");
  const std::int64_t noted = lastCheck;
  Access::autoUpdate(manager, lastCheck);
  EXPECT_EQ(lastCheck, noted);
  EXPECT_EQ(manager.findLogger("later"), -1);
}

TEST(LogConfigText, AllKeysAreKnown) {
  const std::vector<Parsed> expected = {
      {SettingCode::Path, 0, "/var/log/"}, {SettingCode::Name, 0, "Jobs"},
      {SettingCode::Level, 4, ""},         {SettingCode::Display, 0, ""},
      {SettingCode::OutFile, 1, ""},       {SettingCode::MonthDir, 1, ""},
      {SettingCode::FileLine, 0, ""},      {SettingCode::Enable, 1, ""},
      {SettingCode::LimitSize, 7, ""},     {SettingCode::Reserve, 3600, ""},
  };
  EXPECT_EQ(parsed("path=/var/log\nname=Jobs\nlevel=error\ndisplay=false\noutfile=true\n"
                   "monthdir=1\nfileline=0\nenable=yes\nlimitsize=7\nreserve=3600"),
            expected);
}

TEST(LogConfigText, EveryLevelNameSelectsItsLevel) {
  const std::vector<std::pair<std::string, std::int64_t>> names = {
      {"all", 0},     {"trace", 0}, {"debug", 1}, {"info", 2},  {"warn", 3},
      {"warning", 3}, {"error", 4}, {"alarm", 5}, {"fatal", 6}, {"FaTaL", 6}};
  for (const auto& [name, level] : names) {
    EXPECT_EQ(parsed("level=" + name), (std::vector<Parsed>{{SettingCode::Level, level, ""}}))
        << name;
  }
  EXPECT_TRUE(parsed("level=loud").empty());
  EXPECT_TRUE(parsed("level=3").empty());
}

TEST(LogConfigText, KeysAndValuesAreReadWithoutRegardToCase) {
  EXPECT_EQ(parsed("ENABLE=FALSE\nLimitSize=3"),
            (std::vector<Parsed>{{SettingCode::Enable, 0, ""}, {SettingCode::LimitSize, 3, ""}}));
}

TEST(LogConfigText, BlanksTabsAndLineEndsAreTrimmed) {
  const auto sections = velka::parseConfig("\t [ other ] \r\n  name =\t a b \t\r\n");
  ASSERT_EQ(sections.size(), 1U);
  EXPECT_EQ(sections[0].key, "other");
  ASSERT_EQ(sections[0].changes.size(), 1U);
  EXPECT_EQ(sections[0].changes[0].text, "a b");
}

TEST(LogConfigText, MainMayBeWrittenSmall) {
  const auto sections = velka::parseConfig("[main]\n[Main]\n[MAIN]");
  ASSERT_EQ(sections.size(), 3U);
  EXPECT_EQ(sections[0].key, "Main");
  EXPECT_EQ(sections[1].key, "Main");
  EXPECT_EQ(sections[2].key, "MAIN");
}

TEST(LogConfigText, AByteOrderMarkBeforeTheFirstSectionIsSkipped) {
  const auto sections = velka::parseConfig("\xEF\xBB\xBF[Main]\nlevel=error\n");
  ASSERT_EQ(sections.size(), 1U);
  EXPECT_EQ(sections[0].key, "Main");
  EXPECT_EQ(sections[0].changes.size(), 1U);
  // Anywhere else, and in part, it is what it always was: a line of no section.
  EXPECT_TRUE(velka::parseConfig("\n\xEF\xBB\xBF[Main]\n").empty());
  EXPECT_TRUE(velka::parseConfig("\xEF\xBB[Main]\n").empty());
  EXPECT_TRUE(velka::parseConfig("\xEF\xBB\xBF").empty());
}

TEST(LogConfigText, OnlyFalseAndZeroAreFalse) {
  for (const std::string value : {"false", "False", "0"}) {
    EXPECT_EQ(parsed("outfile=" + value), (std::vector<Parsed>{{SettingCode::OutFile, 0, ""}}));
  }
  for (const std::string value : {"true", "1", "", "00", "no"}) {
    EXPECT_EQ(parsed("outfile=" + value), (std::vector<Parsed>{{SettingCode::OutFile, 1, ""}}));
  }
}

TEST(LogConfigText, CommentsUnknownKeysAndBareWordsAreIgnored) {
  EXPECT_TRUE(parsed("# level=fatal\n; level=fatal\ncolour=red\nlevel\n=3\n\n  \n").empty());
}

TEST(LogConfigText, NumbersThatAreNoneAreIgnored) {
  EXPECT_TRUE(parsed("limitsize=abc\nlimitsize=12x\nlimitsize=\nlimitsize=-1\n"
                     "reserve=99999999999999999999\nreserve=1.5\npath=\nname=")
                  .empty());
  EXPECT_EQ(parsed("reserve=-5"), (std::vector<Parsed>{{SettingCode::Reserve, -5, ""}}));
}

TEST(LogConfigText, LinesOutsideASectionAreIgnored) {
  const auto sections =
      velka::parseConfig("level=fatal\n[a]\nlevel=info\n[broken\nlevel=warn\n[]\nlevel=error");
  ASSERT_EQ(sections.size(), 1U);
  ASSERT_EQ(sections[0].changes.size(), 1U);
  EXPECT_EQ(sections[0].changes[0].number, LOG_LEVEL_INFO);
}

TEST(LogConfigText, EmptyAndOddTextsGiveNoSection) {
  for (const std::string text : {"", "\n", "\r\n\r\n", "=", "[", "]", "[ ]", "[]"}) {
    EXPECT_TRUE(velka::parseConfig(text).empty()) << text;
  }
}

TEST(LogConfig, TextSetsTheMainLoggerAndMakesOthers) {
  LogerManager manager;
  EXPECT_TRUE(manager.configFromString(
      "[main]\npath=/x\nname=n\nlevel=warn\nreserve=-5\nlimitsize=4294967296\n"
      "[other]\nenable=true\ndisplay=false\noutfile=0\nmonthdir=1\nfileline=0\n"));
  const LoggerInfo& main = Access::logger(manager);
  EXPECT_EQ(main.path, "/x/");
  EXPECT_EQ(main.name, "n");
  EXPECT_EQ(main.level, LOG_LEVEL_WARN);
  EXPECT_EQ(main.reserve, 0);
  EXPECT_EQ(main.limitsize, UINT32_MAX);
  ASSERT_EQ(manager.findLogger("other"), 1);
  const LoggerInfo& other = Access::logger(manager, 1);
  EXPECT_TRUE(other.enable);
  EXPECT_FALSE(other.display);
  EXPECT_FALSE(other.outfile);
  EXPECT_TRUE(other.monthdir);
  EXPECT_FALSE(other.fileline);
  EXPECT_EQ(other.name, "other");
}

TEST(LogConfig, SectionsBeyondTheLastLoggerAreIgnored) {
  LogerManager manager;
  std::string text;
  for (std::size_t i = 1; i <= 25; ++i) {
    text += logtest::numbered("[k", i) + "]\nenable=1\n";
  }
  EXPECT_TRUE(manager.configFromString(text.c_str()));
  EXPECT_EQ(manager.findLogger("k19"), 19);
  EXPECT_EQ(manager.findLogger("k20"), -1);
  EXPECT_EQ(manager.getStatusActiveLoggers(), 20U);
}

TEST(LogConfig, FileIsAcceptedOnce) {
  const TempFolder folder;
  writeFile(folder.file("log.cfg"), "[main]\nlevel=info\n");
  LogerManager manager;
  EXPECT_FALSE(manager.updateConfig());
  EXPECT_TRUE(manager.config(folder.file("log.cfg").c_str()));
  EXPECT_EQ(Access::logger(manager).level, LOG_LEVEL_INFO);
  EXPECT_FALSE(manager.config(folder.file("log.cfg").c_str()));
}

TEST(LogConfig, FileThatCannotBeReadChangesNothing) {
  const TempFolder folder;
  LogerManager manager;
  EXPECT_FALSE(manager.config(folder.file("none").c_str()));
  EXPECT_FALSE(manager.config(folder.path().c_str()));
  EXPECT_FALSE(manager.config(nullptr));
  EXPECT_FALSE(manager.config(""));
  EXPECT_FALSE(manager.configFromString(nullptr));
  EXPECT_FALSE(manager.updateConfig());
  writeFile(folder.file("log.cfg"), "[main]\nlevel=info\n");
  EXPECT_TRUE(manager.config(folder.file("log.cfg").c_str()));
}

TEST(LogConfig, UpdateReadsTheFileAgain) {
  const TempFolder folder;
  const std::string path = folder.file("log.cfg");
  writeFile(path, "[main]\nlevel=info\nname=first\n");
  LogerManager manager;
  ASSERT_TRUE(manager.config(path.c_str()));
  writeFile(path, "[main]\nlevel=error\n[late]\nenable=1\npath=/p\n");
  EXPECT_TRUE(manager.updateConfig());
  EXPECT_EQ(Access::logger(manager).level, LOG_LEVEL_ERROR);
  EXPECT_EQ(Access::logger(manager).name, "first");
  EXPECT_EQ(manager.findLogger("late"), 1);
  EXPECT_EQ(Access::logger(manager, 1).path, "/p/");
  std::filesystem::remove(path);
  EXPECT_FALSE(manager.updateConfig());
  EXPECT_EQ(Access::logger(manager).level, LOG_LEVEL_ERROR);
}

TEST(LogConfig, HotTextsAreBoundedAsInCalls) {
  const TempFolder folder;
  const std::string path = folder.file("log.cfg");
  writeFile(path, "");
  LogerManager manager;
  ASSERT_TRUE(manager.config(path.c_str()));
  writeFile(path, "[main]\nname=" + std::string(8192, 'n') + "\nlevel=info");
  EXPECT_TRUE(manager.updateConfig());
  EXPECT_NE(Access::logger(manager).name.size(), 8192U);
  EXPECT_EQ(Access::logger(manager).level, LOG_LEVEL_INFO);
}
