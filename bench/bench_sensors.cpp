// SPDX-License-Identifier: MIT
//
// What battery and sensors cost, each beside the bare system calls that no reader can do
// without. The ratio of two lines of one run is what counts.
//
// The trees are files of a temporary folder; a driver's own work comes on top of both sides.
#include <benchmark/benchmark.h>
#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "platform/linux/linux_battery_source.hpp"
#include "platform/linux/linux_sensor_source.hpp"
#include "platform/linux/unique_fd.hpp"
#include "runtime/system_clock.hpp"
#include "sampling/sensor_collector.hpp"

namespace vantora {
namespace {

constexpr MetricSet sensors{
    MetricID::batteryTemperature, MetricID::cpuTemperature, MetricID::fan1Percent,
    MetricID::fan2Percent,        MetricID::fan1RPM,        MetricID::fan2RPM};

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

void readBattery(benchmark::State& state) {
  const Laptop laptop;
  const SystemClock clock;
  LinuxBatterySource source(clock, laptop.path("power_supply"));
  for (auto _ : state) {
    benchmark::DoNotOptimize(source.read());
  }
}
BENCHMARK(readBattery);

// The listing, and each of the attributes that say something opened, read and closed.
void readBatteryBare(benchmark::State& state) {
  const Laptop laptop;
  const std::string root = laptop.path("power_supply");
  const std::vector<std::pair<std::string, std::vector<const char*>>> wanted{
      {root + "/AC", {"type", "scope", "online"}},
      {root + "/BAT0",
       {"type", "scope", "present", "status", "energy_now", "energy_full", "capacity", "power_now",
        "current_now", "voltage_min_design", "time_to_empty_now", "time_to_empty_avg"}},
      {root + "/usb", {"type", "scope", "online"}}};
  std::array<char, 128> buffer{};
  for (auto _ : state) {
    DIR* listing = ::opendir(root.c_str());
    while (::readdir(listing) != nullptr) {
    }
    ::closedir(listing);
    for (const auto& [path, names] : wanted) {
      const UniqueFd directory(::openat(AT_FDCWD, path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
      for (const char* name : names) {
        const UniqueFd file(::openat(directory.get(), name, O_RDONLY | O_CLOEXEC));
        if (file) {
          benchmark::DoNotOptimize(::pread(file.get(), buffer.data(), buffer.size(), 0));
        }
      }
    }
  }
}
BENCHMARK(readBatteryBare);

void passOverHwmon(benchmark::State& state) {
  const Laptop laptop;
  const SystemClock clock;
  LinuxSensorSource source(clock, {laptop.path("hwmon"), laptop.path("power_supply")});
  source.configure(sensors);
  for (auto _ : state) {
    benchmark::DoNotOptimize(source.sample(sensors));
  }
}
BENCHMARK(passOverHwmon);

void passOverHwmonBare(benchmark::State& state) {
  const Laptop laptop;
  std::vector<UniqueFd> files;
  const auto keep = [&](const std::string& below) {
    files.emplace_back(::openat(AT_FDCWD, laptop.path(below).c_str(), O_RDONLY | O_CLOEXEC));
  };
  for (int core = 1; core <= 17; ++core) {
    keep("hwmon/hwmon7/temp" + std::to_string(core) + "_input");
  }
  keep("hwmon/hwmon6/fan1_input");
  keep("hwmon/hwmon6/fan2_input");
  keep("power_supply/BAT0/temp");
  std::array<char, 128> buffer{};
  for (auto _ : state) {
    for (const UniqueFd& file : files) {
      benchmark::DoNotOptimize(::pread(file.get(), buffer.data(), buffer.size(), 0));
    }
  }
}
BENCHMARK(passOverHwmonBare);

/// Answers every key with a float, at the price of a system call.
class Controller final : public SMCConnection {
 public:
  std::optional<std::size_t> call(const SMCRecord& input, SMCRecord& output) override {
    benchmark::DoNotOptimize(::pread(-1, output.data(), 0, 0));
    constexpr std::uint8_t readKeyInfo = 9;
    if (input[42] == readKeyInfo) {
      constexpr std::uint32_t size = 4;
      std::memcpy(&output[28], &size, sizeof size);
      std::memcpy(&output[32], " tlf", 4);
    } else {
      constexpr float value = 42;
      std::memcpy(&output[48], &value, sizeof value);
    }
    return smcRecordSize;
  }
};

void passOver18Keys(benchmark::State& state) {
  const SystemClock clock;
  SensorCollector collector([] { return std::make_unique<Controller>(); }, clock);
  collector.configure({MetricID::cpuTemperature});
  for (auto _ : state) {
    benchmark::DoNotOptimize(collector.sample({MetricID::cpuTemperature}));
  }
}
BENCHMARK(passOver18Keys);

void passOver18KeysBare(benchmark::State& state) {
  Controller controller;
  SMCRecord input{};
  input[42] = 5;
  for (auto _ : state) {
    for (int key = 0; key < 18; ++key) {
      SMCRecord output{};
      benchmark::DoNotOptimize(controller.call(input, output));
      benchmark::DoNotOptimize(output);
    }
  }
}
BENCHMARK(passOver18KeysBare);

}  // namespace
}  // namespace vantora

BENCHMARK_MAIN();
