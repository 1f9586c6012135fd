// SPDX-License-Identifier: MIT
//
// The contract, kept by the real ones of Linux and by the fake.
#include "contract/login_item_contract.hpp"
#include "platform/linux/desktop/autostart_login_item.hpp"
#include "support/fake_settings_ports.hpp"
#include "support/temporary_folder.hpp"

namespace vantora::test {
namespace {

namespace fs = std::filesystem;

struct FakeItem {
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

using LoginItems = testing::Types<FakeItem, Autostart>;
INSTANTIATE_TYPED_TEST_SUITE_P(Linux, LoginItemContract, LoginItems);

}  // namespace
}  // namespace vantora::test
