// Directories, month folders, former files, the program's name.
#include <sys/stat.h>

#include "LogPath.h"
#include "LogTestSupport.h"

using logtest::TempFolder;
using logtest::writeFile;

TEST(LogPath, MonthDirectoryCarriesYearAndMonth) {
  const logtest::ZoneScope zone("UTC");
  velka::LoggerSettings settings;
  settings.path = "/tmp/";
  const velka::LocalDay day = velka::localDayOf(1709647629);
  EXPECT_EQ(velka::directoryFor(settings, day), "/tmp/");
  settings.monthdir = true;
  EXPECT_EQ(velka::directoryFor(settings, day), "/tmp/2024_03/");
}

TEST(LogPath, EveryMissingDirectoryIsMade) {
  const TempFolder folder;
  const mode_t former = umask(022);
  velka::createDirectories(folder.file("a/b//c/name"));
  umask(former);
  struct stat status {};
  ASSERT_EQ(stat(folder.file("a/b/c").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0755U);
  EXPECT_FALSE(std::filesystem::exists(folder.file("a/b/c/name")));
}

TEST(LogPath, SeparatorIsAddedOnlyWhereItIsMissing) {
  EXPECT_EQ(velka::withSeparator("/tmp"), "/tmp/");
  EXPECT_EQ(velka::withSeparator("/tmp/"), "/tmp/");
  EXPECT_EQ(velka::withSeparator("logs\\"), "logs\\");
}

TEST(LogHistory, OneFileIsNeverDeleted) {
  const TempFolder folder;
  writeFile(folder.file("a"), "");
  velka::FileHistory history = {{10, folder.file("a")}};
  velka::updateHistory(history, 1000, 900, folder.file("b"));
  EXPECT_TRUE(std::filesystem::exists(folder.file("a")));
  EXPECT_EQ(history, (velka::FileHistory{{10, folder.file("a")}, {1000, folder.file("b")}}));
}

TEST(LogHistory, OldFilesAtTheFrontAreDeletedUpToTheFirstYoungerOne) {
  const TempFolder folder;
  velka::FileHistory history;
  const std::vector<std::pair<std::int64_t, std::string>> files = {
      {899, "a"}, {900, "b"}, {100, "c"}};
  for (const auto& [time, name] : files) {
    writeFile(folder.file(name), "");
    history.emplace_back(time, folder.file(name));
  }
  velka::updateHistory(history, 1000, 900, folder.file("d"));
  EXPECT_FALSE(std::filesystem::exists(folder.file("a")));
  EXPECT_TRUE(std::filesystem::exists(folder.file("b")));
  EXPECT_TRUE(std::filesystem::exists(folder.file("c")));
  EXPECT_EQ(history,
            (velka::FileHistory{
                {900, folder.file("b")}, {100, folder.file("c")}, {1000, folder.file("d")}}));
}

TEST(LogHistory, AllFilesMayGoEvenTheCurrentOne) {
  const TempFolder folder;
  velka::FileHistory history = {{1, folder.file("a")}, {2, folder.file("b")}};
  writeFile(folder.file("b"), "");
  velka::updateHistory(history, 1000, 900, folder.file("b"));
  EXPECT_FALSE(std::filesystem::exists(folder.file("b")));
  EXPECT_EQ(history, (velka::FileHistory{{1000, folder.file("b")}}));
}

TEST(LogHistory, LastFileIsNotEnteredTwice) {
  velka::FileHistory history;
  velka::updateHistory(history, 1000, 900, "x");
  velka::updateHistory(history, 1001, 901, "x");
  EXPECT_EQ(history, (velka::FileHistory{{1000, "x"}}));
}

TEST(LogPath, ProcessNameIsTheBaseNameOfTheProgram) {
  EXPECT_EQ(velka::processName(), "log_test");
}
