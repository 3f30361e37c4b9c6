#include "host/text/file_text.h"

#include <stdexcept>

#include <gtest/gtest.h>

#include "support/stage_test.h"

namespace trackedcam::host {
namespace {

namespace fs = std::filesystem;

class FileTextTest : public testing::Test {
 protected:
  std::size_t Files() const {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder.Path()), {}));
  }

  test::TemporaryFolder folder;
  fs::path file = folder.Path() / "file.json";
};

TEST_F(FileTextTest, IsReadAsItWasWritten) {
  const std::string content = std::string("a\r\nb\n\0c", 7);
  WriteFile(file, content);
  EXPECT_EQ(ReadFile(file), content);
  WriteFile(file, "");
  EXPECT_EQ(ReadFile(file), "");
  EXPECT_EQ(Files(), 1U);
}

TEST_F(FileTextTest, StaysWhereWritingFails) {
  fs::create_directory(file);
  EXPECT_THROW(WriteFile(file, "content"), std::runtime_error);
  EXPECT_TRUE(fs::is_directory(file));
  EXPECT_EQ(Files(), 1U);
  EXPECT_THROW(WriteFile(folder.Path() / "missing" / "file", ""), std::runtime_error);
}

TEST_F(FileTextTest, ThatIsMissingOrNoneCannotBeRead) {
  EXPECT_THROW(ReadFile(file), std::runtime_error);
  EXPECT_THROW(ReadFile(folder.Path()), std::runtime_error);
}

}  // namespace
}  // namespace trackedcam::host
