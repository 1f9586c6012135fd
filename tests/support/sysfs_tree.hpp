// SPDX-License-Identifier: MIT
//
// A machine's attributes as files of a temporary folder.
#pragma once

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

namespace vantora::test {

/// Removed with the object. Attributes are rewritten in place, as the kernel's are: a file
/// that is kept open sees the new value.
class SysfsTree {
 public:
  SysfsTree() {
    std::string pattern = (std::filesystem::temp_directory_path() / "sysfs-XXXXXX").string();
    root_ = ::mkdtemp(pattern.data());
    std::filesystem::create_directories(root_ / "hwmon");
    std::filesystem::create_directories(root_ / "power_supply");
  }
  /// The machine that platform/linux/sysfs/`machine`.txt describes.
  explicit SysfsTree(const std::string& machine) : SysfsTree() { load(machine); }
  ~SysfsTree() {
    std::error_code ignored;
    std::filesystem::remove_all(root_, ignored);
  }
  SysfsTree(const SysfsTree&) = delete;
  SysfsTree& operator=(const SysfsTree&) = delete;

  void load(const std::string& machine) {
    std::ifstream file(std::string(VANTORA_TEST_DATA) + "/platform/linux/sysfs/" + machine +
                       ".txt");
    ASSERT_TRUE(file) << machine;
    add(file);
  }

  /// The same from a text.
  void add(std::istream& lines) {
    std::string folder;
    for (std::string line; std::getline(lines, line);) {
      const std::size_t link = line.find("->");
      const std::size_t equals = line.find('=');
      if (line.starts_with('[')) {
        folder = line.substr(1, line.size() - 2);
        std::filesystem::create_directories(root_ / folder);
      } else if (!line.starts_with('#') && link != std::string::npos) {
        std::filesystem::create_symlink(line.substr(link + 2),
                                        root_ / folder / line.substr(0, link));
      } else if (!line.starts_with('#') && equals != std::string::npos) {
        write(folder + "/" + line.substr(0, equals), line.substr(equals + 1) + "\n");
      }
    }
  }

  /// Writes these bytes, no line end added; makes the folder if need be.
  void write(const std::string& path, std::string_view bytes) {
    std::filesystem::create_directories((root_ / path).parent_path());
    std::ofstream file(root_ / path, std::ios::binary | std::ios::trunc);
    file << bytes;
  }
  void remove(const std::string& path) { std::filesystem::remove_all(root_ / path); }
  void rename(const std::string& from, const std::string& to) {
    std::filesystem::rename(root_ / from, root_ / to);
  }
  /// A pipe without a writer, in place of an attribute.
  void putPipe(const std::string& path) {
    remove(path);
    ASSERT_EQ(::mkfifo((root_ / path).c_str(), 0600), 0);
  }
  void putFolder(const std::string& path) {
    remove(path);
    std::filesystem::create_directories(root_ / path);
  }

  [[nodiscard]] std::string hwmon() const { return root_ / "hwmon"; }
  [[nodiscard]] std::string powerSupply() const { return root_ / "power_supply"; }
  [[nodiscard]] std::string path(const std::string& below) const { return root_ / below; }

 private:
  std::filesystem::path root_;
};

}  // namespace vantora::test
