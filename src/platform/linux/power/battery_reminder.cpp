// SPDX-License-Identifier: MIT
#include "platform/linux/power/battery_reminder.hpp"

#include <algorithm>
#include <utility>
#include <vector>

#include "platform/linux/battery/power_supply.hpp"
#include "platform/linux/sysfs/sysfs.hpp"

namespace vantora {

BatteryReminder::BatteryReminder(TaskQueue& queue, std::string root, std::function<void()> onDue)
    : queue_(queue), root_(std::move(root)), onDue_(std::move(onDue)) {}

void BatteryReminder::refresh() {
  if (!hasBattery()) {
    timer_.reset();
  } else if (timer_ == nullptr) {
    timer_ = queue_.runEvery(interval, leeway, [this] { onDue_(); });
  }
}

bool BatteryReminder::hasBattery() const {
  const UniqueFd root = Sysfs::openDirectory(root_);
  const std::vector<std::string> names = Sysfs::namesIn(root_);
  return std::any_of(names.begin(), names.end(), [&](const std::string& name) {
    const UniqueFd directory = Sysfs::openDirectory(root.get(), name.c_str());
    return directory && isMachineBatteryPlace(directory.get());
  });
}

}  // namespace vantora
