// SPDX-License-Identifier: MIT
#include "settings/toolkit/x_settings.hpp"

namespace vantora {
namespace {

enum SettingType : std::uint8_t { integerType = 0, textType = 1, colorType = 2 };

// Numbers and texts one after the other. What is asked of it beyond the end spoils it.
class Reader {
 public:
  explicit Reader(std::span<const std::uint8_t> bytes) : rest_(bytes) {}

  [[nodiscard]] bool isGood() const { return isGood_; }
  void useBigEndian() { isBigEndian_ = true; }

  std::span<const std::uint8_t> take(std::size_t count) {
    isGood_ = isGood_ && count <= rest_.size();
    if (!isGood_) {
      return {};
    }
    const auto taken = rest_.first(count);
    rest_ = rest_.subspan(count);
    return taken;
  }
  std::uint32_t number(std::size_t bytes) {
    std::uint32_t value = 0;
    const auto taken = take(bytes);
    for (std::size_t index = 0; index < taken.size(); ++index) {
      value = value << 8U | taken[isBigEndian_ ? index : taken.size() - 1 - index];
    }
    return value;
  }
  // Padded to a multiple of four bytes.
  std::string_view text(std::size_t length) {
    const auto taken = take(length);
    take((4 - length % 4) % 4);
    return {reinterpret_cast<const char*>(taken.data()), taken.size()};
  }

 private:
  std::span<const std::uint8_t> rest_;
  bool isBigEndian_ = false;
  bool isGood_ = true;
};

}  // namespace

std::optional<std::string> xSettingText(std::span<const std::uint8_t> property,
                                        std::string_view name) {
  Reader reader(property);
  constexpr std::uint32_t bigEndian = 1;
  if (reader.number(1) == bigEndian) {
    reader.useBigEndian();
  }
  reader.take(3 + 4);  // unused, the serial number
  const std::uint32_t count = reader.number(4);
  for (std::uint32_t index = 0; index < count && reader.isGood(); ++index) {
    const std::uint32_t type = reader.number(1);
    reader.take(1);
    const std::string_view found = reader.text(reader.number(2));
    reader.take(4);  // the serial number of its last change
    if (type == textType) {
      const std::string_view value = reader.text(reader.number(4));
      if (reader.isGood() && found == name) {
        return std::string(value);
      }
    } else if (type == integerType) {
      reader.take(4);
    } else if (type == colorType) {
      reader.take(8);
    } else {
      return std::nullopt;  // of unknown length
    }
  }
  return std::nullopt;
}

}  // namespace vantora
