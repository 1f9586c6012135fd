// SPDX-License-Identifier: MIT
#include "machine/machine.hpp"

#include <cstring>

namespace standin {
namespace {

constexpr std::uint32_t code(const char (&text)[5]) {
  std::uint32_t value = 0;
  for (int i = 0; i < 4; ++i) {
    value = value << 8 | static_cast<std::uint8_t>(text[i]);
  }
  return value;
}

// A notebook with two fans, as its controller describes it.
Machine notebook() {
  Machine machine;
  machine.controllerKeys = {{"TB1T", floatKey(30.5F)}, {"TB2T", floatKey(31.5F)},
                            {"FNum", byteKey(2)},      {"F0Ac", floatKey(2317)},
                            {"F0Mx", floatKey(6550)},  {"F1Ac", floatKey(2500)},
                            {"F1Mx", floatKey(7000)}};
  for (const char* key : {"Tp00", "Tp04", "Tp08", "Tp0C", "Tp0G", "Tp0K", "Tp0O", "Tp0R", "Tp0U",
                          "Tp0X", "Tp0a", "Tp0d", "Tp0g", "Tp0j", "Tp0m", "Tp0p", "Tp0u", "Tp0y"}) {
    machine.controllerKeys[key] = floatKey(47);
  }
  Interface loopback;
  loopback.name = "lo0";
  loopback.index = 1;
  loopback.type = 24;  // IFT_LOOP
  Interface wireless;
  wireless.name = "en0";
  wireless.index = 2;
  wireless.receivedPerSecond = 642e3;
  wireless.sentPerSecond = 88e3;
  Interface tunnel;
  tunnel.name = "utun0";
  tunnel.index = 3;
  tunnel.type = 1;  // IFT_OTHER
  tunnel.hasIp4 = false;
  machine.interfaces = {loopback, wireless, tunnel};
  return machine;
}

}  // namespace

ControllerKey floatKey(float value) {
  ControllerKey key{code("flt "), std::vector<std::uint8_t>(sizeof value)};
  std::memcpy(key.bytes.data(), &value, sizeof value);
  return key;
}

ControllerKey byteKey(std::uint8_t value) {
  return {code("ui8 "), {value}};
}

std::recursive_mutex& machineMutex() {
  static auto* const only = new std::recursive_mutex;
  return *only;
}

Machine& theMachine() {
  static auto* const only = new Machine(notebook());
  return *only;
}

void resetMachine() {
  withMachine([](Machine& machine) {
    Machine fresh = notebook();
    // What is open stays open.
    fresh.openConnections = machine.openConnections;
    fresh.hostRights = machine.hostRights;
    fresh.serviceReferences = machine.serviceReferences;
    machine = std::move(fresh);
  });
}

}  // namespace standin
