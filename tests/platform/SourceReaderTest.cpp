#include "platform/paths/SourceReader.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <chrono>
#include <cstring>
#include <filesystem>
#include <optional>
#include <string>
#include <thread>

#include "tests/platform/TemporaryFolder.h"

namespace fl::filesystem {
namespace {

constexpr std::uint64_t kLimit = 100;

// The error of reading a path; empty if it succeeds.
std::string failureOf(const std::string& path) {
  try {
    readSourceFile(path, kLimit);
  } catch (const ReadError& failure) {
    EXPECT_THROW(readFileBytes(path, kLimit), ReadError) << path;
    return failure.what();
  }
  return "";
}

TEST(SourceReader, ReadsTextsInBothEncodings) {
  const TemporaryFolder folder;
  const std::string utf8 = folder.write("caf\xC3\xA9.vlm", "\xC3\xA9\r\n");
  const std::string latin1 = folder.write("b.vlm", "\xE9\n");
  EXPECT_EQ(readSourceFile(utf8, kLimit).text, u"\u00E9\r\n");
  EXPECT_EQ(readSourceFile(utf8, kLimit).encoding, EncodingType::utf8);
  EXPECT_EQ(readSourceFile(latin1, kLimit).text, u"\u00E9\n");
  EXPECT_EQ(readSourceFile(latin1, kLimit).encoding, EncodingType::latin1);
  EXPECT_EQ(readFileBytes(latin1, kLimit), "\xE9\n");
  EXPECT_EQ(readSourceFile(folder.write("empty"), kLimit).text, u"");
}

TEST(SourceReader, ErrorsHaveTheReason) {
  const TemporaryFolder folder;
  const std::string pipe = folder.path() + "/pipe";
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  const std::string socket = folder.path() + "/socket";
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  ASSERT_LT(socket.size(), sizeof address.sun_path);
  std::memcpy(address.sun_path, socket.c_str(), socket.size());
  const int descriptor = ::socket(AF_UNIX, SOCK_STREAM, 0);
  ASSERT_GE(descriptor, 0);
  ASSERT_EQ(::bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  ::close(descriptor);
  const std::string loop = folder.path() + "/loop";
  std::filesystem::create_symlink("loop", loop);
  const std::string file = folder.write("file", std::string(100, 'x'));
  const struct {
    std::string path;
    std::string reason;
  } cases[] = {
      {file, ""},
      {folder.path() + "/missing", "there is no such file"},
      {file + "/below", "there is no such file"},
      {"", "there is no such file"},
      {folder.path(), "it is a folder"},
      {pipe, "it is no regular file"},
      {socket, "it is no regular file"},
      {"/dev/null", "it is no regular file"},
      {folder.write("large", std::string(101, 'x')), "it is larger than the limit of 100 bytes"},
      {loop, "Too many levels of symbolic links"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(failureOf(c.path), c.reason.empty() ? "" : c.path + ": " + c.reason);
  }
}

TEST(SourceReader, NeedsPermission) {
  if (::geteuid() == 0) GTEST_SKIP() << "root may read everything";
  const TemporaryFolder folder;
  const std::string file = folder.write("file", "x");
  std::filesystem::permissions(file, std::filesystem::perms::none);
  EXPECT_EQ(failureOf(file), file + ": there is no permission to read it");
}

TEST(SourceReader, StampsIdentifyStatesOfAFile) {
  const TemporaryFolder folder;
  const std::string file = folder.write("file", "first");
  const SourceFileText fresh = readSourceFile(file, kLimit);
  EXPECT_TRUE(fresh.recentlyChanged);
  EXPECT_EQ(stampOf(file), fresh.stamp);
  EXPECT_EQ(fresh.stamp.size, 5U);
  std::this_thread::sleep_for(std::chrono::milliseconds(30));
  EXPECT_FALSE(readSourceFile(file, kLimit).recentlyChanged);
  folder.write("file", "other");
  EXPECT_NE(stampOf(file), fresh.stamp);
  const std::optional<FileStamp> second = stampOf(file);
  // Setting back the time of modification does not hide the change.
  std::filesystem::last_write_time(
      file, std::filesystem::file_time_type::clock::now() - std::chrono::hours(24));
  EXPECT_NE(stampOf(file), second);
  EXPECT_TRUE(readSourceFile(file, kLimit).recentlyChanged);
  EXPECT_EQ(stampOf(folder.path() + "/missing"), std::nullopt);
}

}  // namespace
}  // namespace fl::filesystem
