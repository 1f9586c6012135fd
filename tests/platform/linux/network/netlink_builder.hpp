// SPDX-License-Identifier: MIT
#pragma once

#include <linux/rtnetlink.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>
#include <vector>

namespace vantora::test {

/// Builds netlink messages as the kernel lays them out.
class NetlinkBuilder {
 public:
  explicit NetlinkBuilder(std::uint32_t sequence = 1) : sequence_(sequence) {}

  template <typename Header>
  NetlinkBuilder& begin(std::uint16_t type, const Header& header, std::uint16_t flags = 0) {
    start_ = bytes_.size();
    nlmsghdr message{};
    message.nlmsg_type = type;
    message.nlmsg_flags = flags;
    message.nlmsg_seq = sequence_;
    put(message);
    put(header);
    return close();
  }

  /// An attribute of the message begun last.
  NetlinkBuilder& add(std::uint16_t type, std::span<const std::byte> payload) {
    putAttribute(bytes_, type, payload);
    return close();
  }
  template <typename Number>
  NetlinkBuilder& addNumber(std::uint16_t type, Number number) {
    return add(type, std::as_bytes(std::span(&number, 1)));
  }
  /// With the zero byte that the kernel writes.
  NetlinkBuilder& addText(std::uint16_t type, std::string_view text) {
    return add(type, zeroEnded(text));
  }
  /// An attribute that holds one text attribute.
  NetlinkBuilder& addNestedText(std::uint16_t outer, std::uint16_t inner, std::string_view text) {
    std::vector<std::byte> nested;
    putAttribute(nested, inner, zeroEnded(text));
    return add(outer, nested);
  }

  [[nodiscard]] const std::vector<std::byte>& bytes() const { return bytes_; }
  /// For tests that spoil them.
  [[nodiscard]] std::vector<std::byte>& bytes() { return bytes_; }

 private:
  template <typename Structure>
  void put(const Structure& structure) {
    const auto raw = std::as_bytes(std::span(&structure, 1));
    bytes_.insert(bytes_.end(), raw.begin(), raw.end());
    pad(bytes_);
  }
  static void pad(std::vector<std::byte>& bytes) { bytes.resize((bytes.size() + 3) / 4 * 4); }
  static std::vector<std::byte> zeroEnded(std::string_view text) {
    const auto raw = std::as_bytes(std::span(text.data(), text.size()));
    std::vector<std::byte> bytes(raw.begin(), raw.end());
    bytes.push_back(std::byte{0});
    return bytes;
  }
  static void putAttribute(std::vector<std::byte>& into, std::uint16_t type,
                           std::span<const std::byte> payload) {
    const rtattr header{static_cast<unsigned short>(sizeof(rtattr) + payload.size()), type};
    const auto raw = std::as_bytes(std::span(&header, 1));
    into.insert(into.end(), raw.begin(), raw.end());
    into.insert(into.end(), payload.begin(), payload.end());
    pad(into);
  }
  // Writes the length of the message begun last.
  NetlinkBuilder& close() {
    const auto length = static_cast<std::uint32_t>(bytes_.size() - start_);
    std::memcpy(bytes_.data() + start_ + offsetof(nlmsghdr, nlmsg_len), &length, sizeof length);
    return *this;
  }

  std::uint32_t sequence_;
  std::vector<std::byte> bytes_;
  std::size_t start_ = 0;
};

}  // namespace vantora::test
