// SPDX-License-Identifier: MIT
#include "platform/linux/battery/supply_inventory.hpp"

#include "platform/linux/battery/power_supply.hpp"
#include "platform/linux/sysfs/sysfs.hpp"

namespace vantora {
namespace {

const char* stateOf(PowerSupply::Status status) {
  switch (status) {
    case PowerSupply::Status::charging:
      return "carregando";
    case PowerSupply::Status::discharging:
      return "descarregando";
    case PowerSupply::Status::notCharging:
      return "sem carregar";
    case PowerSupply::Status::full:
      return "cheia";
    case PowerSupply::Status::unknown:
      return "estado desconhecido";
  }
  return "";
}

// Of the machine's own readings, those that this supply alone would give.
void describe(const PowerSupply& supply, DeviceReport& report) {
  const BatteryReadings readings = batteryReadings({supply}, WallTime());
  const bool isAdapter = supply.isAdapter();
  const auto add = [&report](MetricID metric, const MetricSample& sample) {
    if (sample.quality == Quality::valid) {
      report.feeds.insert(metric);
    }
  };
  if (isAdapter) {
    report.state = supply.online ? "adaptador, conectado" : "adaptador, desconectado";
    add(MetricID::adapterWatts, readings.adapterWatts);
    if (report.feeds.empty()) {
      report.why = supply.online ? "não informa a potência" : "não está conectado";
    }
    return;
  }
  report.state = std::string("bateria, ") + stateOf(supply.status);
  add(MetricID::batteryPercent, readings.percentage);
  add(MetricID::batteryTime, readings.duration);
  if (report.feeds.empty()) {
    report.why = "não informa a sua carga";
  }
}

}  // namespace

std::vector<DeviceReport> supplyInventory(const std::string& root) {
  std::vector<DeviceReport> reports;
  const UniqueFd folder = Sysfs::openDirectory(root);
  for (const std::string& name : Sysfs::namesIn(root)) {
    const UniqueFd directory = Sysfs::openDirectory(folder.get(), name.c_str());
    if (!directory) {
      continue;
    }
    const PowerSupply supply = readPowerSupply(directory.get());
    DeviceReport& report = reports.emplace_back();
    report.driver = Sysfs::driverName(directory.get());
    if (supply.belongsToADevice) {
      report.name = "de um periférico";
      report.why = "não é desta máquina";
      continue;
    }
    report.name = name;
    if (supply.isMachineBattery() || supply.isAdapter()) {
      describe(supply, report);
    } else if (supply.type == PowerSupply::Type::battery) {
      report.state = "bateria";
      report.why = "não está na máquina";
    } else {
      report.why = "não é bateria nem adaptador";
    }
  }
  return reports;
}

}  // namespace vantora
