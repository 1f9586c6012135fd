// SPDX-License-Identifier: MIT
//
// What every LoginItem promises, asked of the real one and of the fake.
#include <gtest/gtest.h>

#include "platform/linux/autostart_login_item.hpp"
#include "support/fake_settings_ports.hpp"
#include "support/temporary_folder.hpp"

namespace vantora {
namespace {

namespace fs = std::filesystem;

struct Fake {
  test::FakeLoginItem item;
  void refuse() { item.fault = Fault::failed("Sem permissão"); }
};

struct Autostart {
  Autostart() {
    test::writeBytes(places().executable, "#!/bin/sh\n");
    fs::permissions(places().executable, fs::perms(0755));
  }
  [[nodiscard]] AutostartLoginItem::Places places() const {
    AutostartLoginItem::Places places;
    places.userFolder = folder / "config/autostart";
    places.systemFolders = {folder / "etc/autostart"};
    places.executable = folder / "vantora";
    return places;
  }
  // A file where the folder would have to be: not even the superuser gets past it.
  void refuse() const { test::writeBytes(folder / "config", "in the way"); }

  test::TemporaryFolder folder;
  AutostartLoginItem item{places()};
};

template <typename System>
class LoginItemContract : public testing::Test {
 protected:
  System system_;
  LoginItem& item_ = system_.item;
};
using Systems = testing::Types<Fake, Autostart>;
TYPED_TEST_SUITE(LoginItemContract, Systems);

TYPED_TEST(LoginItemContract, IsNotRegisteredBeforeAnybodyAsked) {
  EXPECT_EQ(this->item_.status(), LoginItemStatus::notRegistered);
  EXPECT_EQ(this->item_.status(), LoginItemStatus::notRegistered);
}

TYPED_TEST(LoginItemContract, IsEnabledOnceItIsRegisteredAndUntilItIsNoMore) {
  EXPECT_EQ(this->item_.setRegistered(true), std::nullopt);
  EXPECT_EQ(this->item_.status(), LoginItemStatus::enabled);
  EXPECT_EQ(this->item_.setRegistered(false), std::nullopt);
  EXPECT_EQ(this->item_.status(), LoginItemStatus::notRegistered);
  EXPECT_EQ(this->item_.setRegistered(true), std::nullopt);
  EXPECT_EQ(this->item_.status(), LoginItemStatus::enabled);
}

TYPED_TEST(LoginItemContract, TakesTheSameRequestTwice) {
  for (const bool registered : {false, true, false}) {
    EXPECT_EQ(this->item_.setRegistered(registered), std::nullopt);
    EXPECT_EQ(this->item_.setRegistered(registered), std::nullopt);
    EXPECT_EQ(this->item_.status(),
              registered ? LoginItemStatus::enabled : LoginItemStatus::notRegistered);
  }
}

TYPED_TEST(LoginItemContract, SaysWhyItCouldNotBeRegisteredAndStaysAsItWas) {
  this->system_.refuse();
  const std::optional<Fault> fault = this->item_.setRegistered(true);
  ASSERT_TRUE(fault);
  EXPECT_FALSE(fault->detail.empty());
  EXPECT_EQ(this->item_.status(), LoginItemStatus::notRegistered);
}

}  // namespace
}  // namespace vantora
