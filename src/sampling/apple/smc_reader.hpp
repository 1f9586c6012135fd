// SPDX-License-Identifier: MIT
//
// Reads named values (keys of four characters, such as TB1T) from the Apple System
// Management Controller. It only ever asks; nothing is written to the controller.
#pragma once

#include <memory>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "sampling/apple/smc_connection.hpp"

namespace vantora {

/// What the controller said about its keys is kept as long as the reader: a key is
/// described once, and one that is not there is never asked about again. Not thread-safe;
/// used on the sampling queue only.
class SMCReader {
 public:
  /// Null when the connection cannot be opened.
  [[nodiscard]] static std::unique_ptr<SMCReader> open(const SMCOpener& opener);
  explicit SMCReader(std::unique_ptr<SMCConnection> connection);

  /// A value of four bytes and type "flt ", if it is finite.
  [[nodiscard]] std::optional<double> readFloat(std::string_view key);
  /// A value of one byte and type "ui8 ".
  [[nodiscard]] std::optional<std::uint8_t> readUInt8(std::string_view key);

 private:
  struct KeyInfo {
    std::uint32_t size = 0;  ///< Bytes of the value, 1 to 32.
    std::uint32_t type = 0;  ///< Code of four characters.
  };
  struct Value {
    KeyInfo info;
    SMCRecord record{};
  };
  std::optional<Value> read(std::string_view key);
  std::optional<KeyInfo> describe(std::uint32_t code);
  std::optional<SMCRecord> call(std::uint32_t code, std::uint8_t command, std::uint32_t size);

  std::unique_ptr<SMCConnection> connection_;
  std::unordered_map<std::uint32_t, KeyInfo> metadata_;
  std::unordered_set<std::uint32_t> missing_;
};

}  // namespace vantora
