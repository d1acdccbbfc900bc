// Which files count as our own, and whether a name still is the file's.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <initializer_list>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <utility>

#include "OwnFile.h"
#include "log/LogTestSupport.h"

namespace {

using logtest::TempFolder;
using logtest::writeFile;
using velka::isNamed;
using velka::isOwn;
using velka::OrRoots;
using velka::UniqueFd;

struct stat statusOf(uid_t owner, nlink_t names = 1, unsigned type = S_IFREG) {
  struct stat status {};
  status.st_uid = owner;
  status.st_nlink = names;
  status.st_mode = type | 0600U;
  return status;
}

TEST(OwnFiles, AreRegularOursAndHaveOneName) {
  EXPECT_TRUE(isOwn(statusOf(geteuid())));
  EXPECT_TRUE(isOwn(statusOf(geteuid(), 0)));
  EXPECT_FALSE(isOwn(statusOf(geteuid(), 2)));
  EXPECT_FALSE(isOwn(statusOf(geteuid() + 1)));
  for (const unsigned type :
       std::initializer_list<unsigned>{S_IFDIR, S_IFLNK, S_IFIFO, S_IFCHR, S_IFBLK, S_IFSOCK}) {
    EXPECT_FALSE(isOwn(statusOf(geteuid(), 1, type)));
  }
}

TEST(OwnFiles, OfRootCountWhereThatIsAskedFor) {
  EXPECT_TRUE(isOwn(statusOf(0), OrRoots::Yes));
  EXPECT_EQ(isOwn(statusOf(0)), geteuid() == 0);
  EXPECT_TRUE(isOwn(statusOf(geteuid()), OrRoots::Yes));
  EXPECT_FALSE(isOwn(statusOf(geteuid() + 1), OrRoots::Yes));
  EXPECT_FALSE(isOwn(statusOf(0, 2), OrRoots::Yes));
}

TEST(OwnFiles, OfNoNameAreNone) {
  EXPECT_FALSE(velka::openOwnFile(nullptr));
  EXPECT_FALSE(velka::makeFreshOwnFile(nullptr));
  EXPECT_FALSE(velka::holdsOwnBytes(nullptr));
  velka::removeOwnFile(nullptr);
}

TEST(OwnFiles, AreMadeFreshAndEmpty) {
  const TempFolder folder;
  const std::string name = folder.file("a");
  EXPECT_FALSE(velka::holdsOwnBytes(name.c_str()));
  writeFile(name, "of an earlier job");
  EXPECT_TRUE(velka::holdsOwnBytes(name.c_str()));
  velka::removeEmptyOwnFile(name.c_str());
  EXPECT_EQ(access(name.c_str(), F_OK), 0);
  EXPECT_TRUE(velka::makeFreshOwnFile(name.c_str()));
  EXPECT_FALSE(velka::holdsOwnBytes(name.c_str()));
  velka::removeEmptyOwnFile(name.c_str());
  EXPECT_NE(access(name.c_str(), F_OK), 0);
}

TEST(NamedFiles, AreTheOnesThatTheNameLeadsTo) {
  const TempFolder folder;
  writeFile(folder.file("a"), "");
  const UniqueFd file = velka::openOwnFile(folder.file("a").c_str());
  ASSERT_TRUE(file);
  EXPECT_TRUE(isNamed(file, folder.file("a").c_str()));
  ASSERT_EQ(unlink(folder.file("a").c_str()), 0);
  EXPECT_FALSE(isNamed(file, folder.file("a").c_str()));
  // Another file in the same place, on the same device.
  writeFile(folder.file("a"), "");
  EXPECT_FALSE(isNamed(file, folder.file("a").c_str()));
}

// Two folders on different devices that have the same number there: the roots of two
// mounted file systems.
std::optional<std::pair<std::string, std::string>> twinsOnTwoDevices() {
  std::map<ino_t, std::pair<dev_t, std::string>> seen;
  std::ifstream mounts("/proc/self/mountinfo");
  for (std::string line; std::getline(mounts, line);) {
    std::istringstream fields(line);
    std::string path;
    for (int field = 0; field < 5; ++field) {
      fields >> path;
    }
    struct stat status {};
    if (access(path.c_str(), R_OK) != 0 || lstat(path.c_str(), &status) != 0) {
      continue;
    }
    const auto [twin, isNew] = seen.try_emplace(status.st_ino, status.st_dev, path);
    if (!isNew && twin->second.first != status.st_dev) {
      return std::pair(twin->second.second, path);
    }
  }
  return std::nullopt;
}

TEST(NamedFiles, AreNotThoseOfTheSameNumberOnAnotherDevice) {
  const auto twins = twinsOnTwoDevices();
  if (!twins) {
    GTEST_SKIP() << "no two file systems here have roots of the same number";
  }
  const UniqueFd file(open(twins->first.c_str(), O_RDONLY | O_CLOEXEC));
  ASSERT_TRUE(file);
  EXPECT_TRUE(isNamed(file, twins->first.c_str()));
  EXPECT_FALSE(isNamed(file, twins->second.c_str())) << twins->first << ' ' << twins->second;
}

}  // namespace
