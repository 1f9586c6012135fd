// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace vantora {

/// Where the session's message bus listens, from the values of DBUS_SESSION_BUS_ADDRESS
/// and XDG_RUNTIME_DIR (null when unset): the first, else the "bus" socket in the second
/// (the place that systemd's user sessions use). Empty when neither tells.
[[nodiscard]] std::string sessionBusAddress(const char* sessionBusAddress,
                                            const char* runtimeDirectory);

/// The path of the socket that the first of the addresses names ("unix:path=..."), without
/// escapes; empty where it names none.
[[nodiscard]] std::string socketPath(std::string_view busAddress);

}  // namespace vantora
