// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <utility>

#include "sampling/apple/mach_ticks.hpp"
#include "sampling/tick_counters.hpp"

namespace vantora::test {

/// Tick counters that stay the same until a test moves them.
class FakeTickCounters final : public TickCounters {
 public:
  explicit FakeTickCounters(TickTexts texts = MachTicks::texts) : texts_(texts) {}

  void set(std::uint64_t active, std::uint64_t idle) { next_ = CPUTicks{active, idle}; }
  void fail(std::string source) { next_ = Fault::failed(std::move(source)); }

  [[nodiscard]] int reads() const { return reads_; }

  [[nodiscard]] Result<CPUTicks> read() override {
    ++reads_;
    return next_;
  }
  [[nodiscard]] TickTexts texts() const override { return texts_; }

 private:
  TickTexts texts_;
  Result<CPUTicks> next_ = CPUTicks{1000, 9000};
  int reads_ = 0;
};

}  // namespace vantora::test
