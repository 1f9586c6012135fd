// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace vantora {

/// A network interface of this machine, as a user chooses one.
struct NetworkLink {
  std::string name;          ///< UTF-8.
  bool isPhysical = false;   ///< Hardware that carries the machine's traffic; nothing virtual.
  bool isUp = false;         ///< Administratively up.
  bool isAddressed = false;  ///< Has an IPv4 address, or an IPv6 address outside fe80::/10.

  bool operator==(const NetworkLink&) const = default;
};

}  // namespace vantora
