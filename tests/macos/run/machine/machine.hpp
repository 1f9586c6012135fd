// SPDX-License-Identifier: MIT
//
// The Mac that the stand-ins play: what its sensors say, what its services answer, and what
// was asked of them. Tests write it and read it.
#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace standin {

/// One power source as IOKit describes it.
struct PowerSource {
  std::string type = "InternalBattery";
  std::optional<double> current = 81;
  std::optional<double> maximum = 100;
  std::string state = "Battery Power";
  bool isCharging = false;
  double minutesToEmpty = 272;
  double minutesToFull = -1;
};

/// A value of the controller: its description and its bytes.
struct ControllerKey {
  std::uint32_t type = 0;
  std::vector<std::uint8_t> bytes;
};
[[nodiscard]] ControllerKey floatKey(float value);
[[nodiscard]] ControllerKey byteKey(std::uint8_t value);

/// How the AppleSMC service answers.
enum class ControllerMode {
  working,
  missing,   ///< No such service.
  refusing,  ///< It refuses to open.
  failing,   ///< Every call fails.
  garbage,   ///< Calls succeed with bytes that mean nothing.
};

struct Interface {
  std::string name;
  std::uint16_t index = 0;
  std::uint8_t type = 6;       // IFT_ETHER
  std::uint32_t flags = 0x41;  // IFF_UP, IFF_RUNNING
  std::uint64_t received = 0;
  std::uint64_t sent = 0;
  double receivedPerSecond = 0;
  double sentPerSecond = 0;
  bool hasIp4 = true;
  bool hasLinkLocalIp6 = true;
};

enum class LoginAnswer { enables, asksForApproval, refuses };

/// What one call of the programs did, for tests that count.
struct Calls {
  int interfaceNames = 0;  // if_indextoname
  int interfaceTables = 0;
  int controllerOpenings = 0;
  int controllerCalls = 0;
  int hostStatistics = 0;
  int powerReadings = 0;
};

struct Machine {
  std::vector<PowerSource> powerSources{{}};
  std::optional<double> adapterWatts;
  bool areSourcesMissing = false;  // IOPSCopyPowerSourcesInfo gives nothing

  ControllerMode controller = ControllerMode::working;
  std::map<std::string, ControllerKey> controllerKeys;

  int hostStatus = 0;       // what host_statistics returns
  double busyPercent = 23;  // of the ticks that pass between two readings
  std::uint32_t ticks[4] = {1000, 500, 9000, 0};

  std::vector<Interface> interfaces;
  std::optional<std::string> primaryInterface = "en0";
  bool isInterfaceTableRefused = false;
  int interfaceTablePadding = 0;  // bytes that the first call asks for in excess
  int truncatedTo = -1;           // bytes of the table that the second call gives, or all

  long loginStatus = 0;  // SMAppServiceStatusNotRegistered
  LoginAnswer loginAnswer = LoginAnswer::enables;

  bool arePreferencesRefused = false;
  std::map<std::string, std::string> preferences;  // application, a dot, key

  std::vector<std::string> openedAddresses;

  // What must be given back.
  int openConnections = 0;
  int hostRights = 0;
  int serviceReferences = 0;

  Calls calls;
};

std::recursive_mutex& machineMutex();
Machine& theMachine();

/// Calls `use` with the machine, which other threads leave alone meanwhile.
template <typename Use>
auto withMachine(Use use) {
  const std::lock_guard lock(machineMutex());
  return use(theMachine());
}

/// The machine as it was at first. Between tests.
void resetMachine();

/// The power sources' notification: runs the sources that listen; false when none does.
bool announcePowerChange();

/// Complains, as a fault, of everything that was not given back at the program's end.
void requireBalance();

}  // namespace standin
