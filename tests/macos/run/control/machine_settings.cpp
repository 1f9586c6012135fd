// SPDX-License-Identifier: MIT
#include "control/machine_settings.hpp"

#include <functional>
#include <map>
#include <string>

#include "machine/machine.hpp"

namespace standin {
namespace {

using Setting = std::function<void(Machine&, const std::string& value)>;

ControllerMode controllerMode(const std::string& name) {
  static const std::map<std::string, ControllerMode> modes = {
      {"working", ControllerMode::working},   {"missing", ControllerMode::missing},
      {"refusing", ControllerMode::refusing}, {"failing", ControllerMode::failing},
      {"garbage", ControllerMode::garbage},
  };
  return modes.at(name);
}

LoginAnswer loginAnswer(const std::string& name) {
  return name == "enables"   ? LoginAnswer::enables
         : name == "refuses" ? LoginAnswer::refuses
                             : LoginAnswer::asksForApproval;
}

// One interface, two with other numbers and names, or more than any table holds.
void setInterfaces(Machine& machine, const std::string& name) {
  if (name == "none") {
    machine.interfaces.clear();
    return;
  }
  if (name == "renamed") {
    machine.interfaces[1].name = "en7";
    machine.interfaces[1].index = 12;
    machine.primaryInterface = "en7";
    return;
  }
  const int count = std::stoi(name);
  for (int i = 0; i < count; ++i) {
    Interface bridge;
    bridge.name = "bridge" + std::to_string(i);
    bridge.index = static_cast<std::uint16_t>(100 + i);
    bridge.type = 209;  // IFT_BRIDGE
    machine.interfaces.push_back(bridge);
  }
}

const std::map<std::string, Setting>& settings() {
  static const std::map<std::string, Setting> all = {
      {"busy",
       [](Machine& machine, const std::string& value) { machine.busyPercent = std::stod(value); }},
      {"hostStatus",
       [](Machine& machine, const std::string& value) { machine.hostStatus = std::stoi(value); }},
      {"charge",
       [](Machine& machine, const std::string& value) {
         machine.powerSources.at(0).current = std::stod(value);
       }},
      {"state", [](Machine& machine,
                   const std::string& value) { machine.powerSources.at(0).state = value; }},
      {"watts",
       [](Machine& machine, const std::string& value) { machine.adapterWatts = std::stod(value); }},
      {"battery",
       [](Machine& machine, const std::string& value) {
         if (value == "none") {
           machine.powerSources.clear();
         }
       }},
      {"controller", [](Machine& machine,
                        const std::string& value) { machine.controller = controllerMode(value); }},
      {"table",
       [](Machine& machine, const std::string& value) {
         machine.isInterfaceTableRefused = value == "refused";
         machine.truncatedTo = value == "short" ? 100 : -1;
         machine.interfaceTablePadding = value == "huge" ? 4'000'000 : 0;
       }},
      {"interfaces", &setInterfaces},
      {"loginAnswer", [](Machine& machine,
                         const std::string& value) { machine.loginAnswer = loginAnswer(value); }},
      {"loginStatus",
       [](Machine& machine, const std::string& value) { machine.loginStatus = std::stol(value); }},
  };
  return all;
}

}  // namespace

nlohmann::json setMachine(std::istream& arguments) {
  std::string name;
  std::string value;
  arguments >> name;
  std::getline(arguments >> std::ws, value);
  const auto setting = settings().find(name);
  if (setting == settings().end()) {
    return {{"error", "no such setting"}};
  }
  withMachine([&](Machine& machine) { setting->second(machine, value); });
  return true;
}

}  // namespace standin
