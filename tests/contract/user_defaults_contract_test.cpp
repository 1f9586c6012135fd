// SPDX-License-Identifier: MIT
//
// What every UserDefaults promises, asked of the real one and of the fake.
#include <gtest/gtest.h>

#include "platform/linux/json_user_defaults.hpp"
#include "support/fake_settings_ports.hpp"
#include "support/temporary_folder.hpp"

namespace vantora {
namespace {

struct Fake {
  test::FakeUserDefaults defaults;
  void refuse() { defaults.fault = Fault::failed("Sem permissão"); }
};

struct JsonFile {
  test::TemporaryFolder folder;
  JsonUserDefaults defaults{folder.path()};
  // A folder in the place of the file, with something in it.
  void refuse() const {
    const std::filesystem::path file = folder / "Vantora/preferences.json";
    std::filesystem::remove(file);
    std::filesystem::create_directories(file / "inside");
  }
};

template <typename System>
class UserDefaultsContract : public testing::Test {
 protected:
  System system_;
  UserDefaults& defaults_ = system_.defaults;
};
using Systems = testing::Types<Fake, JsonFile>;
TYPED_TEST_SUITE(UserDefaultsContract, Systems);

TYPED_TEST(UserDefaultsContract, HasNothingBeforeAnythingWasStored) {
  EXPECT_EQ(this->defaults_.text("a"), std::nullopt);
}

TYPED_TEST(UserDefaultsContract, KeepsEachTextUnderItsKeyUntilItIsReplaced) {
  EXPECT_EQ(this->defaults_.setText("a", "/usr/bin/codex"), std::nullopt);
  EXPECT_EQ(this->defaults_.setText("b", ""), std::nullopt);
  EXPECT_EQ(this->defaults_.text("a"), "/usr/bin/codex");
  EXPECT_EQ(this->defaults_.text("b"), "");
  EXPECT_EQ(this->defaults_.setText("a", "ção"), std::nullopt);
  EXPECT_EQ(this->defaults_.text("a"), "ção");
  EXPECT_EQ(this->defaults_.text("b"), "");
}

TYPED_TEST(UserDefaultsContract, SaysWhyItCouldNotStore) {
  this->system_.refuse();
  const std::optional<Fault> fault = this->defaults_.setText("a", "1");
  ASSERT_TRUE(fault);
  EXPECT_FALSE(fault->detail.empty());
  EXPECT_EQ(this->defaults_.text("a"), std::nullopt);
}

}  // namespace
}  // namespace vantora
