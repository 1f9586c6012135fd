// SPDX-License-Identifier: MIT
//
// Whatever preferences.json holds, reading it is harmless, and what is stored is read back.
// The first line of the input is the text that is stored, the rest is the file.
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>

#include "model/utf8.hpp"
#include "platform/linux/desktop/json_user_defaults.hpp"

namespace {

class Folder {
 public:
  Folder() {
    const auto base = std::filesystem::exists("/dev/shm") ? std::filesystem::path("/dev/shm")
                                                          : std::filesystem::temp_directory_path();
    std::string pattern = (base / "defaults-XXXXXX").string();
    path_ = ::mkdtemp(pattern.data());
    std::filesystem::create_directory(path_ / "Vantora");
  }
  ~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;

  [[nodiscard]] const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace vantora;
  static const Folder folder;
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  const std::string value(input.substr(0, input.find('\n')));
  const std::string_view file = input.substr(std::min(value.size() + 1, input.size()));
  std::ofstream(folder.path() / "Vantora/preferences.json", std::ios::binary | std::ios::trunc)
      << file;

  JsonUserDefaults defaults(folder.path());
  const auto before = defaults.text(codexExecutablePathKey);
  const bool isStored = !defaults.setText(codexExecutablePathKey, value).has_value();
  // JSON holds text; a path may be other bytes, and is refused then.
  if (isStored != (repairedUtf8(value) == value)) {
    std::abort();
  }
  if (defaults.text(codexExecutablePathKey) != (isStored ? std::optional(value) : before)) {
    std::abort();
  }
  return 0;
}
