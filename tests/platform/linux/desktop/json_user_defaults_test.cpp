// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/json_user_defaults.hpp"

#include <gtest/gtest.h>

#include "support/temporary_folder.hpp"

namespace vantora {
namespace {

namespace fs = std::filesystem;
using test::readBytes;
using test::writeBytes;

class JsonUserDefaultsTest : public testing::Test {
 protected:
  test::TemporaryFolder folder_;
  const fs::path file_ = folder_ / "Vantora/preferences.json";
  JsonUserDefaults defaults_{folder_.path()};
};

TEST_F(JsonUserDefaultsTest, ReadsWhatAnotherProgramOfOursStored) {
  EXPECT_EQ(JsonUserDefaults(folder_.path()).setText("a", "ção"), std::nullopt);
  EXPECT_EQ(defaults_.text("a"), "ção");
}

TEST_F(JsonUserDefaultsTest, KeepsWhatOthersStored) {
  fs::create_directories(file_.parent_path());
  writeBytes(file_, R"({"x":[1,{"y":null}],"Vantora.CodexExecutablePath":7})");
  EXPECT_EQ(defaults_.text(codexExecutablePathKey), std::nullopt);
  EXPECT_EQ(defaults_.setText(codexExecutablePathKey, "/c"), std::nullopt);
  EXPECT_EQ(readBytes(file_), R"({"Vantora.CodexExecutablePath":"/c","x":[1,{"y":null}]})");
}

TEST_F(JsonUserDefaultsTest, ReadsWhatIsNoObjectAsEmptyAndKeepsItAside) {
  fs::create_directories(file_.parent_path());
  for (const char* bytes : {"", "[1]", "{\"a\":", "\"a\""}) {
    writeBytes(file_, bytes);
    EXPECT_EQ(defaults_.text("a"), std::nullopt);
    EXPECT_EQ(defaults_.setText("a", "1"), std::nullopt);
    EXPECT_EQ(defaults_.text("a"), "1");
    EXPECT_EQ(readBytes(folder_ / "Vantora/preferences.backup.json"), bytes);
  }
}

TEST_F(JsonUserDefaultsTest, StoresNothingWhereItMayNot) {
  writeBytes(folder_ / "Vantora", "in the way");
  EXPECT_TRUE(defaults_.setText("a", "1"));
  EXPECT_TRUE(JsonUserDefaults(folder_ / "other").setText("a", "\xff"));
  EXPECT_EQ(defaults_.text("a"), std::nullopt);
}

}  // namespace
}  // namespace vantora
