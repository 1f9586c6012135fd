// SPDX-License-Identifier: MIT
//
// The contract, kept by the real ones of Linux and by the fake.
#include "contract/user_defaults_contract.hpp"
#include "platform/linux/desktop/json_user_defaults.hpp"
#include "support/fake_settings_ports.hpp"
#include "support/temporary_folder.hpp"

namespace vantora::test {
namespace {

struct FakeDefaults {
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

using DefaultsStores = testing::Types<FakeDefaults, JsonFile>;
INSTANTIATE_TYPED_TEST_SUITE_P(Linux, UserDefaultsContract, DefaultsStores);

}  // namespace
}  // namespace vantora::test
