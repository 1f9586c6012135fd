// SPDX-License-Identifier: MIT
//
// An open connection to the Apple System Management Controller: one call with a record of
// 80 bytes each way. The layout of the record is SMCReader's affair; an adapter only carries
// it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace vantora {

inline constexpr std::size_t smcRecordSize = 80;
using SMCRecord = std::array<std::uint8_t, smcRecordSize>;

/// Destroying it closes the connection. Used on the sampling queue only.
class SMCConnection {
 public:
  virtual ~SMCConnection() = default;

  /// IOConnectCallStructMethod with selector 2. `output` comes in zeroed. The size of the
  /// output as the controller reports it, or nothing when the call failed.
  [[nodiscard]] virtual std::optional<std::size_t> call(const SMCRecord& input,
                                                        SMCRecord& output) = 0;
};

/// Opens a new connection; null where there is no controller or it cannot be opened.
using SMCOpener = std::function<std::unique_ptr<SMCConnection>()>;

}  // namespace vantora
