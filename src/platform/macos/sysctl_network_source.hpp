// SPDX-License-Identifier: MIT
#pragma once

#include "sampling/interface_list.hpp"

namespace vantora {

/// The interface table by sysctl, the primary interface from the dynamic store, the
/// addressed ones by getifaddrs. Every reading fetches the table anew, counters and all.
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

  InterfaceList list_;
  InterfaceNames addressed_;
};

}  // namespace vantora
