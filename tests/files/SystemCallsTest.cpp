// What the program asks of the system while it writes files, and what it does if that fails.
//
// The functions of the C library below are replaced in this test program by ones that record a
// call, or let it fail.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>

#include "files/writing/FileBatch.h"
#include "files/writing/FileWriter.h"
#include "files/writing/Restore.h"
#include "tests/cli/ProgramRunner.h"

namespace soca::testing {
namespace {

namespace fs = std::filesystem;

bool isRecording = false;
std::string calls;
// The number of the last file for which space was reserved.
ino_t reservedFile = 0;
// The call that fails, and its error.
std::string failingCall;
int failingError = 0;

// The last part of a path, the letter for a temporary file of the run.
std::string shortName(const std::string& path) {
  const std::string name = path.substr(path.rfind('/') + 1);
  return name.starts_with(".soca-") ? "." + name.substr(name.rfind('-') + 1) : name;
}

std::string nameOf(int file) {
  std::array<char, 4096> path{};
  const std::string link = "/proc/self/fd/" + std::to_string(file);
  const ssize_t size = ::readlink(link.c_str(), path.data(), path.size());
  return shortName({path.data(), static_cast<std::size_t>(std::max<ssize_t>(size, 0))});
}

void record(const std::string& call) {
  if (isRecording) calls += call + "; ";
}

bool fails(const char* call) {
  if (failingCall != call) return false;
  errno = failingError;
  return true;
}

template <class... Arguments>
int systemCall(const char* name, long number, Arguments... arguments) {
  return fails(name) ? -1 : static_cast<int>(::syscall(number, arguments...));
}

}  // namespace

extern "C" {
int fsync(int file) {
  record("flush " + nameOf(file));
  return systemCall("fsync", SYS_fsync, file);
}
int syncfs(int file) noexcept {
  record("flush all");
  return systemCall("syncfs", SYS_syncfs, file);
}
int fallocate(int file, int mode, off_t offset, off_t size) {
  struct stat status = {};
  if (isRecording && ::fstat(file, &status) == 0) reservedFile = status.st_ino;
  return systemCall("fallocate", SYS_fallocate, file, mode, offset, size);
}
int rename(const char* from, const char* to) noexcept {
  record(shortName(from) + " > " + shortName(to));
  return systemCall("rename", SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0);
}
int fstat(int file, struct stat* status) noexcept {
  return systemCall("fstat", SYS_fstat, file, status);
}
int fchown(int file, uid_t user, gid_t group) noexcept {
  return systemCall("fchown", SYS_fchown, file, user, group);
}
int fchmod(int file, mode_t mode) noexcept { return systemCall("fchmod", SYS_fchmod, file, mode); }
ssize_t llistxattr(const char* path, char* list, std::size_t size) noexcept {
  return systemCall("llistxattr", SYS_llistxattr, path, list, size);
}
ssize_t lgetxattr(const char* path, const char* name, void* value, std::size_t size) noexcept {
  return systemCall("lgetxattr", SYS_lgetxattr, path, name, value, size);
}
int fsetxattr(int file, const char* name, const void* value, std::size_t size, int flags) noexcept {
  return systemCall("fsetxattr", SYS_fsetxattr, file, name, value, size, flags);
}
int fremovexattr(int file, const char* name) noexcept {
  return systemCall("fremovexattr", SYS_fremovexattr, file, name);
}
}

namespace {

class SystemCallsTest : public ::testing::Test {
 protected:
  void SetUp() override { calls.clear(); }
  void TearDown() override {
    failingCall.clear();
    isRecording = false;
  }

  std::vector<FileChange> changes(const std::vector<std::string>& names) const {
    std::vector<FileChange> changes;
    for (const std::string& name : names) {
      space_.write(name, "old");
      const std::string path = space_.path() / name;
      changes.push_back({path, *fl::filesystem::stampOf(path), digestOf("new")});
    }
    return changes;
  }

  // The calls of a run over the files, and of its undo.
  void writeAndUndo(const std::vector<std::string>& names) {
    const GoesOn always = [] { return true; };
    const auto list = changes(names);
    const auto lock = store_.lock([] {}, always);
    isRecording = true;
    writeFiles(store_, *lock, list, [](auto) { return std::string("new"); }, always);
    struct stat state = {};
    ::stat((store_.folderOf(1) + "/state").c_str(), &state);
    EXPECT_EQ(state.st_ino, reservedFile) << "its space was reserved";
    calls += "\n";
    Journal journal(store_.folderOf(1));
    undoRun(journal, journal.pending(), always);
    isRecording = false;
  }

  const Workspace space_;
  const RunStore store_;
};

TEST_F(SystemCallsTest, FilesAreOnTheDiskBeforeTheyAreNeeded) {
  isRecording = true;
  store_.lock([] {}, [] { return true; });
  EXPECT_TRUE(calls.ends_with(".state; flush soca; ")) << calls;
  calls.clear();
  writeAndUndo({"a/A", "a/B", "b/C"});
  EXPECT_EQ(calls,
            "flush before; flush state.new; state.new > state; flush 1.new; 1.new > 1; flush runs; "
            "flush .0; flush .1; flush .2; .0 > A; .1 > B; .2 > C; flush a; flush b; "
            "flush state.new; state.new > state; flush 1; \n"
            "flush state.new; state.new > state; flush 1; "
            "flush .0; flush .1; flush .2; .0 > A; .1 > B; .2 > C; flush a; flush b; "
            "flush state.new; state.new > state; flush 1; ");
}

TEST_F(SystemCallsTest, ManyFilesAreFlushedTogether) {
  writeAndUndo({"1", "2", "3", "4", "5", "6", "7", "8", "9"});
  const std::string first = calls.substr(0, calls.find('\n'));
  EXPECT_NE(first.find("flush runs; flush all; .0 > 1; "), std::string::npos) << first;
}

TEST_F(SystemCallsTest, AFileWhoseAttributesCannotBeCopiedStays) {
  constexpr const char* attribute = "user.note";
  const struct {
    const char* call;
    int error;
    // What is reported; empty if the file is replaced.
    const char* reason;
    const char* warning;
  } table[] = {
      {"", 0, "", ""},
      {"fchown", EPERM, "could not get the owner of the old one: Operation not permitted", ""},
      {"fchmod", EPERM, "could not get the permissions", ""},
      {"llistxattr", EIO, "its extended attributes could not be read: Input/output error", ""},
      {"lgetxattr", EIO, "its attribute 'user.note' could not be copied: Input/output", ""},
      {"fsetxattr", ENOSPC, "'user.note' could not be copied: No space left on device", ""},
      {"fremovexattr", EPERM, "the access list that the new file has", ""},
      {"lgetxattr", EACCES, "", "system does not let you copy, the attributes user.note"},
      {"fsetxattr", EPERM, "", "system does not let you copy, the attributes user.note"},
  };
  for (const auto& row : table) {
    SCOPED_TRACE(std::string(row.call) + " " + std::strerror(row.error));
    space_.write("A", "old");
    const std::string path = space_.path() / "A";
    if (::setxattr(path.c_str(), attribute, "mine", 4, 0) != 0) GTEST_SKIP() << "no attributes";
    const bool isOwn = ::geteuid() != 0;
    ASSERT_TRUE(isOwn || ::chown(path.c_str(), 12345, 12345) == 0);
    if (isOwn && std::string(row.call) == "fchown") continue;
    FileWriter writer("t");
    failingCall = row.call;
    failingError = row.error;
    const auto reason = writer.stage(0, {path, "new", *fl::filesystem::stampOf(path)});
    failingCall.clear();
    if (*row.reason != '\0') {
      EXPECT_NE(reason.value_or("").find(row.reason), std::string::npos) << reason.value_or("");
      EXPECT_EQ(space_.readAll().size(), 1);
      continue;
    }
    EXPECT_EQ(reason, std::nullopt);
    EXPECT_EQ(writer.commit(0), std::nullopt);
    struct stat status = {};
    ::stat(path.c_str(), &status);
    EXPECT_EQ(status.st_uid, isOwn ? ::geteuid() : 12345);
    EXPECT_EQ(status.st_gid, isOwn ? ::getegid() : 12345);
    const auto warnings = writer.warnings();
    if (*row.warning != '\0') {
      ASSERT_EQ(warnings.size(), 1);
      EXPECT_NE(warnings[0].find(row.warning), std::string::npos) << warnings[0];
      continue;
    }
    EXPECT_TRUE(warnings.empty());
    std::array<char, 8> value{};
    EXPECT_EQ(::getxattr(path.c_str(), attribute, value.data(), value.size()), 4);
    EXPECT_STREQ(value.data(), "mine");
  }
}

TEST_F(SystemCallsTest, AFileThatCannotBeLookedAtIsNotRead) {
  space_.write("A", "old");
  failingCall = "fstat";
  failingError = EIO;
  try {
    fl::filesystem::readFileBytes(space_.path() / "A", 9);
    ADD_FAILURE() << "no error";
  } catch (const fl::filesystem::ReadError& error) {
    EXPECT_STREQ(std::strstr(error.what(), ": "), ": Input/output error");
  }
}

TEST_F(SystemCallsTest, WithoutAFlushOrSpaceNothingIsReplaced) {
  const auto list = changes({"A", "B"});
  const GoesOn always = [] { return true; };
  const auto newBytes = [](auto) { return std::string("new"); };
  const auto lock = store_.lock([] {}, always);
  for (const auto& [call, error] : {std::pair("fsync", EIO), std::pair("fallocate", ENOSPC)}) {
    failingCall = call;
    failingError = error;
    EXPECT_THROW(writeFiles(store_, *lock, list, newBytes, always), JournalError) << call;
    EXPECT_EQ(space_.read("A"), "old");
    EXPECT_EQ(space_.readAll().size(), 2);
    EXPECT_TRUE(store_.runs().empty());
  }
  // Not every file system reserves space.
  failingError = EOPNOTSUPP;
  EXPECT_EQ(writeFiles(store_, *lock, list, newBytes, always).writtenCount, 2);
}

}  // namespace
}  // namespace soca::testing
