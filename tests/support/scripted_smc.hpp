// SPDX-License-Identifier: MIT
//
// A System Management Controller that answers from a table and counts what it is asked.
#pragma once

#include <cstdint>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "sampling/apple/smc_connection.hpp"

namespace vantora::test {

/// What the controller says about one key. The knobs make one answer wrong at a time.
struct SMCKey {
  std::uint32_t size = 0;
  std::string type;
  std::vector<std::uint8_t> bytes;
  bool infoFails = false;       ///< The call for the description fails.
  bool readFails = false;       ///< The call for the value fails.
  std::uint8_t infoResult = 0;  ///< Result byte of the description.
  std::uint8_t readResult = 0;  ///< Result byte of the value.
  std::size_t outputSize = smcRecordSize;
};

inline SMCKey floatKey(float value) {
  SMCKey key{4, "flt ", std::vector<std::uint8_t>(4)};
  std::memcpy(key.bytes.data(), &value, sizeof value);
  return key;
}
inline SMCKey uint8Key(std::uint8_t value) {
  return {1, "ui8 ", {value}};
}

/// The controller; outlives the connections to it.
class ScriptedSMC {
 public:
  struct Call {
    std::string key;
    int command = 0;
    std::uint32_t size = 0;
    bool operator==(const Call&) const = default;
  };

  /// Opens connections to this controller, unless `refuses` is set.
  [[nodiscard]] SMCOpener opener() {
    return [this]() -> std::unique_ptr<SMCConnection> {
      ++openings;
      return refuses ? nullptr : std::make_unique<Connection>(*this);
    };
  }

  /// How often the key was asked for with this command (9: description, 5: value).
  [[nodiscard]] int count(const std::string& key, int command) const {
    int found = 0;
    for (const Call& call : calls) {
      found += call.key == key && call.command == command ? 1 : 0;
    }
    return found;
  }

  std::map<std::string, SMCKey> keys;
  bool refuses = false;
  int openings = 0;
  int open = 0;  ///< Connections that are open now.
  std::vector<Call> calls;
  std::vector<SMCRecord> inputs;

 private:
  class Connection final : public SMCConnection {
   public:
    explicit Connection(ScriptedSMC& controller) : controller_(controller) { ++controller.open; }
    ~Connection() override { --controller_.open; }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    std::optional<std::size_t> call(const SMCRecord& input, SMCRecord& output) override {
      return controller_.answer(input, output);
    }

   private:
    ScriptedSMC& controller_;
  };

  std::optional<std::size_t> answer(const SMCRecord& input, SMCRecord& output) {
    // The code counts the first character highest, so the bytes lie backwards.
    const std::string name(input.rend() - 4, input.rend());
    Call call{name, input[42], 0};
    std::memcpy(&call.size, &input[28], sizeof call.size);
    calls.push_back(call);
    inputs.push_back(input);

    constexpr std::uint8_t keyNotFound = 0x84;
    const auto found = keys.find(name);
    if (found == keys.end()) {
      output[40] = keyNotFound;
      return smcRecordSize;
    }
    const SMCKey& key = found->second;
    const bool isInfo = call.command == 9;
    if (isInfo ? key.infoFails : key.readFails) {
      return std::nullopt;
    }
    output[40] = isInfo ? key.infoResult : key.readResult;
    if (isInfo) {
      std::memcpy(&output[28], &key.size, sizeof key.size);
      for (std::size_t index = 0; index < 4 && index < key.type.size(); ++index) {
        output[35 - index] = static_cast<std::uint8_t>(key.type[index]);
      }
    } else {
      for (std::size_t index = 0; index < key.bytes.size() && index < 32; ++index) {
        output[48 + index] = key.bytes[index];
      }
    }
    return key.outputSize;
  }
};

}  // namespace vantora::test
