// SPDX-License-Identifier: MIT
#pragma once

#include <systemd/sd-bus.h>

#include <memory>

namespace vantora {

/// A match, call or object on a bus connection; releasing it withdraws it.
struct BusSlotRelease {
  void operator()(sd_bus_slot* slot) const { sd_bus_slot_unref(slot); }
};
using BusSlot = std::unique_ptr<sd_bus_slot, BusSlotRelease>;

/// Takes the slot that sd-bus writes into an out parameter: sd_bus_x(bus, out(slot), ...).
class BusSlotOut {
 public:
  explicit BusSlotOut(BusSlot& target) : target_(target) { target_.reset(); }
  ~BusSlotOut() { target_.reset(slot_); }
  BusSlotOut(const BusSlotOut&) = delete;
  BusSlotOut& operator=(const BusSlotOut&) = delete;
  operator sd_bus_slot**() { return &slot_; }

 private:
  BusSlot& target_;
  sd_bus_slot* slot_ = nullptr;
};
[[nodiscard]] inline BusSlotOut out(BusSlot& slot) {
  return BusSlotOut(slot);
}

}  // namespace vantora
