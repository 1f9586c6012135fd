// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "sampling/network_source.hpp"

namespace vantora::test {

/// Interfaces that a test adds, changes and removes.
class FakeNetworkSource final : public NetworkSource {
 public:
  /// At the end of the table: up, physical, addressed, and nothing counted yet.
  void add(std::string name) {
    addressed_.insert(name);
    interfaces_.push_back({{std::move(name), ++lastIndex_, true, true}, {}, false});
  }
  void remove(std::string_view name) {
    std::erase_if(interfaces_, [&](const Entry& entry) { return entry.shown.name == name; });
  }
  /// The interface stays in the table, but is gone when its counters are asked for.
  void vanishBeforeCounters(std::string_view name) { at(name).isGone = true; }

  void setUp(std::string_view name, bool isUp) { at(name).shown.isUp = isUp; }
  void setPhysical(std::string_view name, bool isPhysical) {
    at(name).shown.isPhysical = isPhysical;
  }
  void setAddressed(const std::string& name, bool isAddressed) {
    if (isAddressed) {
      addressed_.insert(name);
    } else {
      addressed_.erase(name);
    }
  }
  void setCounters(std::string_view name, std::uint64_t received, std::uint64_t sent) {
    at(name).counters = {received, sent};
  }
  void setPrimary(std::optional<std::string> name) { primary_ = std::move(name); }

  void failRead(std::string source) { readFault_ = Fault::failed(std::move(source)); }
  void failCounters(std::string source) { countersFault_ = Fault::failed(std::move(source)); }
  void recover() {
    readFault_.reset();
    countersFault_.reset();
  }

  [[nodiscard]] int reads() const { return reads_; }
  [[nodiscard]] int counterReads() const { return counterReads_; }
  [[nodiscard]] int lookUps() const { return lookUps_; }

  [[nodiscard]] Result<std::span<const NetworkInterface>> read() override {
    ++reads_;
    if (readFault_) {
      return *readFault_;
    }
    table_.clear();
    for (const Entry& entry : interfaces_) {
      table_.push_back(entry.shown);
    }
    return std::span<const NetworkInterface>(table_);
  }
  [[nodiscard]] Result<NetworkCounters> counters(std::size_t position) override {
    ++counterReads_;
    if (countersFault_) {
      return *countersFault_;
    }
    const NetworkInterface& wanted = table_.at(position);
    const auto found =
        std::find_if(interfaces_.begin(), interfaces_.end(),
                     [&](const Entry& entry) { return entry.shown.index == wanted.index; });
    if (found == interfaces_.end() || found->isGone) {
      return Fault::absent();
    }
    return found->counters;
  }
  [[nodiscard]] std::optional<std::string> primaryInterface() override {
    ++lookUps_;
    return primary_;
  }
  [[nodiscard]] const InterfaceNames& addressedInterfaces() override {
    ++lookUps_;
    return addressed_;
  }
  [[nodiscard]] std::string_view mechanism() const override { return "NET_RT_IFLIST2"; }

 private:
  struct Entry {
    NetworkInterface shown;
    NetworkCounters counters;
    bool isGone = false;
  };
  Entry& at(std::string_view name) {
    return *std::find_if(interfaces_.begin(), interfaces_.end(),
                         [&](const Entry& entry) { return entry.shown.name == name; });
  }

  std::vector<Entry> interfaces_;
  std::vector<NetworkInterface> table_;
  InterfaceNames addressed_;
  std::optional<std::string> primary_;
  std::optional<Fault> readFault_;
  std::optional<Fault> countersFault_;
  std::uint32_t lastIndex_ = 0;
  int reads_ = 0;
  int counterReads_ = 0;
  int lookUps_ = 0;
};

}  // namespace vantora::test
