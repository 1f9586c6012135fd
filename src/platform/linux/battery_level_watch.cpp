// SPDX-License-Identifier: MIT
#include "platform/linux/battery_level_watch.hpp"

#include <utility>

#include "platform/linux/power_supply.hpp"
#include "platform/linux/sysfs.hpp"

namespace vantora {

BatteryLevelWatch::BatteryLevelWatch(TaskQueue& queue, std::string root,
                                     std::function<void()> onChange)
    : queue_(queue), root_(std::move(root)), onChange_(std::move(onChange)) {}

void BatteryLevelWatch::refresh() {
  levels_ = levels();
  if (levels_.empty()) {
    timer_.reset();
  } else if (timer_ == nullptr) {
    timer_ = queue_.runEvery(interval, leeway, [this] { look(); });
  }
}

void BatteryLevelWatch::look() {
  const std::string before = levels_;
  refresh();
  if (levels_ != before) {
    onChange_();
  }
}

std::string BatteryLevelWatch::levels() const {
  std::string text;
  const UniqueFd root = Sysfs::openDirectory(root_);
  for (const std::string& name : Sysfs::namesIn(root_)) {
    const UniqueFd directory = Sysfs::openDirectory(root.get(), name.c_str());
    if (directory && isMachineBattery(directory.get())) {
      Sysfs::Buffer buffer;  // NOLINT: the read fills it
      text.append(name).append("=").append(
          Sysfs::readText(directory.get(), "capacity", buffer).text);
      text.append(",");
    }
  }
  return text;
}

}  // namespace vantora
