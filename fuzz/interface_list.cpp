// SPDX-License-Identifier: MIT
#include "sampling/apple/interface_list.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>

namespace {

using namespace vantora;

// Gives the bytes as the table, whatever length it promised.
class Calls final : public InterfaceListCalls {
 public:
  explicit Calls(std::span<const std::byte> table) : table_(table) {}

  std::optional<std::size_t> neededBytes() override { return table_.size(); }
  std::optional<std::size_t> fill(std::span<std::byte> buffer) override {
    std::copy_n(table_.begin(), std::min(buffer.size(), table_.size()), buffer.begin());
    return table_.size();
  }
  std::optional<std::string> nameOfIndex(std::uint32_t index) override {
    if (index % 5 == 0) {
      return std::nullopt;
    }
    // With a byte that is no UTF-8 now and then.
    return "en" + std::string(1, static_cast<char>(index));
  }

 private:
  std::span<const std::byte> table_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Calls calls(std::as_bytes(std::span(data, size)));
  const Result<InterfaceList> list = InterfaceListReader::read(calls);
  const bool isHonest = list ? list->interfaces.size() == list->counters.size() &&
                                   list->interfaces.size() <= size / 160
                             : size == 0 || size >= InterfaceListReader::tableCap;
  if (!isHonest) {
    std::abort();
  }
  return 0;
}
