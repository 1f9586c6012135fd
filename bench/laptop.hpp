// SPDX-License-Identifier: MIT
//
// A laptop's power supplies and sensors as files of a temporary folder, and the bare system
// calls that read them. A driver's own work comes on top of both sides.
#pragma once

#include <benchmark/benchmark.h>
#include <dirent.h>
#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "runtime/unique_fd.hpp"

namespace vantora::bench {

/// A laptop of sixteen cores: a battery, two adapters, eight chips.
class Laptop {
 public:
  Laptop() {
    std::string pattern = (std::filesystem::temp_directory_path() / "bench-XXXXXX").string();
    root_ = ::mkdtemp(pattern.data());
    folder("power_supply/AC", {{"type", "Mains"}, {"online", "0"}});
    folder("power_supply/BAT0", {{"type", "Battery"},
                                 {"status", "Discharging"},
                                 {"present", "1"},
                                 {"energy_now", "40000000"},
                                 {"energy_full", "50000000"},
                                 {"capacity", "80"},
                                 {"power_now", "10000000"},
                                 {"current_now", "900000"},
                                 {"voltage_min_design", "11100000"},
                                 {"temp", "304"}});
    folder("power_supply/usb", {{"type", "USB"}, {"scope", "System"}, {"online", "0"}});
    for (const char* name : {"AC", "acpitz", "nvme", "iwlwifi_1", "BAT0", "amdgpu"}) {
      chip(name, {{"temp1_input", "40000"}});
    }
    chip("dell_smm", {{"fan1_input", "2450"},
                      {"fan1_max", "4900"},
                      {"fan2_input", "2400"},
                      {"fan2_max", "4900"}});
    std::vector<std::pair<std::string, std::string>> cores;
    for (int core = 1; core <= 17; ++core) {
      cores.emplace_back("temp" + std::to_string(core) + "_input", "52000");
      cores.emplace_back("temp" + std::to_string(core) + "_label", "Core");
    }
    chip("coretemp", cores);
  }
  ~Laptop() {
    std::error_code ignored;
    std::filesystem::remove_all(root_, ignored);
  }
  Laptop(const Laptop&) = delete;
  Laptop& operator=(const Laptop&) = delete;

  [[nodiscard]] std::string path(const std::string& below) const { return root_ / below; }

 private:
  using Attributes = std::vector<std::pair<std::string, std::string>>;

  void folder(const std::string& below, const Attributes& attributes) {
    std::filesystem::create_directories(root_ / below);
    for (const auto& [name, value] : attributes) {
      std::ofstream(root_ / below / name) << value << "\n";
    }
  }
  void chip(const std::string& name, const Attributes& attributes) {
    const std::string below = "hwmon/hwmon" + std::to_string(chips_++);
    folder(below, attributes);
    folder(below, {{"name", name}});
  }

  std::filesystem::path root_;
  int chips_ = 0;
};

/// The listing, and each of the attributes that say something opened, read and closed.
class BareBattery {
 public:
  explicit BareBattery(const Laptop& laptop)
      : root_(laptop.path("power_supply")),
        wanted_{{root_ + "/AC", {"type", "scope", "online"}},
                {root_ + "/BAT0",
                 {"type", "scope", "present", "status", "energy_now", "energy_full", "capacity",
                  "power_now", "current_now", "voltage_min_design", "time_to_empty_now",
                  "time_to_empty_avg"}},
                {root_ + "/usb", {"type", "scope", "online"}}} {}

  void operator()() const {
    std::array<char, 128> buffer;
    DIR* listing = ::opendir(root_.c_str());
    while (::readdir(listing) != nullptr) {
    }
    ::closedir(listing);
    for (const auto& [path, names] : wanted_) {
      const UniqueFd directory(::openat(AT_FDCWD, path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
      for (const char* name : names) {
        const UniqueFd file(::openat(directory.get(), name, O_RDONLY | O_CLOEXEC));
        if (file) {
          benchmark::DoNotOptimize(::pread(file.get(), buffer.data(), buffer.size(), 0));
        }
      }
    }
  }

 private:
  std::string root_;
  std::vector<std::pair<std::string, std::vector<const char*>>> wanted_;
};

/// One read of each sensor, of files that are kept open.
class BareSensors {
 public:
  explicit BareSensors(const Laptop& laptop) {
    const auto keep = [&](const std::string& below) {
      files_.emplace_back(::openat(AT_FDCWD, laptop.path(below).c_str(), O_RDONLY | O_CLOEXEC));
    };
    for (int core = 1; core <= 17; ++core) {
      keep("hwmon/hwmon7/temp" + std::to_string(core) + "_input");
    }
    keep("hwmon/hwmon6/fan1_input");
    keep("hwmon/hwmon6/fan2_input");
    keep("power_supply/BAT0/temp");
  }

  void operator()() const {
    std::array<char, 128> buffer;
    for (const UniqueFd& file : files_) {
      benchmark::DoNotOptimize(::pread(file.get(), buffer.data(), buffer.size(), 0));
    }
  }

 private:
  std::vector<UniqueFd> files_;
};

}  // namespace vantora::bench
