// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "sampling/apple/interface_list.hpp"

namespace vantora {

/// The interface table by sysctl, the primary interface from the dynamic store, the
/// addressed ones by getifaddrs. Every reading fetches the table anew, counters and all;
/// only the interfaces' names, each of which costs the system a walk of its own, are kept
/// until the table lists other numbers or in another order.
class SysctlNetworkSource final : public NetworkSource, private InterfaceListCalls {
 public:
  [[nodiscard]] Result<std::span<const NetworkInterface>> read() override;
  [[nodiscard]] Result<NetworkCounters> counters(std::size_t position) override;
  [[nodiscard]] std::optional<std::string> primaryInterface() override;
  [[nodiscard]] const InterfaceNames& addressedInterfaces() override;
  [[nodiscard]] std::string_view mechanism() const override {
    return InterfaceListReader::mechanism;
  }

 private:
  [[nodiscard]] std::optional<std::size_t> neededBytes() override;
  [[nodiscard]] std::optional<std::size_t> fill(std::span<std::byte> buffer) override;
  [[nodiscard]] std::optional<std::string> nameOfIndex(std::uint32_t index) override;

  // The table's interfaces in its order, with the names they had when it last changed.
  struct Named {
    std::uint32_t index;
    std::optional<std::string> name;
  };

  InterfaceList list_;
  std::vector<Named> names_;
  std::size_t asked_ = 0;  // of names_, in the walk that is under way
  InterfaceNames addressed_;
};

}  // namespace vantora
