// SPDX-License-Identifier: MIT
#include "sampling/apple/interface_list.hpp"

#include <algorithm>
#include <cstring>
#include <utility>

#include "model/utf8.hpp"

namespace vantora::InterfaceListReader {
namespace {

// if_msghdr2 with its if_data64 at byte 32 (net/if.h, net/if_var.h).
constexpr std::size_t headerBytes = 160;
constexpr std::size_t lengthOffset = 0;     // ifm_msglen
constexpr std::size_t typeOffset = 3;       // ifm_type
constexpr std::size_t flagsOffset = 8;      // ifm_flags
constexpr std::size_t indexOffset = 12;     // ifm_index
constexpr std::size_t linkTypeOffset = 32;  // ifm_data.ifi_type
constexpr std::size_t receivedOffset = 96;  // ifm_data.ifi_ibytes
constexpr std::size_t sentOffset = 104;     // ifm_data.ifi_obytes

constexpr std::uint8_t interfaceInfo = 0x12;  // RTM_IFINFO2, net/route.h
constexpr std::uint32_t upFlag = 0x1;         // IFF_UP, net/if.h
constexpr std::uint8_t ethernet = 6;          // IFT_ETHER, net/if_types.h; Wi-Fi too

template <typename Number>
Number numberAt(std::span<const std::byte> record, std::size_t offset) {
  Number number;
  std::memcpy(&number, record.data() + offset, sizeof number);
  return number;
}

void append(InterfaceList& list, std::span<const std::byte> record, InterfaceListCalls& calls) {
  const std::uint32_t index = numberAt<std::uint16_t>(record, indexOffset);
  const std::optional<std::string> rawName = calls.nameOfIndex(index);
  if (!rawName) {
    return;
  }
  std::string name = repairedUtf8(*rawName);
  const bool isUp = (numberAt<std::uint32_t>(record, flagsOffset) & upFlag) != 0;
  // Tunnels, loopback and bridges have another type or another name.
  const bool isPhysical =
      numberAt<std::uint8_t>(record, linkTypeOffset) == ethernet && name.starts_with("en");
  list.interfaces.push_back({std::move(name), index, isUp, isPhysical});
  list.counters.push_back({numberAt<std::uint64_t>(record, receivedOffset),
                           numberAt<std::uint64_t>(record, sentOffset)});
}

}  // namespace

Result<InterfaceList> read(InterfaceListCalls& calls) {
  const Fault fault = Fault::failed(std::string(failure));
  const std::optional<std::size_t> needed = calls.neededBytes();
  if (!needed || *needed < 1 || *needed >= tableCap) {
    return fault;
  }
  std::vector<std::byte> buffer(*needed);
  const std::optional<std::size_t> filled = calls.fill(buffer);
  if (!filled) {
    return fault;
  }
  return walk(std::span(buffer).first(std::min(*filled, buffer.size())), calls);
}

InterfaceList walk(std::span<const std::byte> table, InterfaceListCalls& calls) {
  InterfaceList list;
  while (table.size() >= headerBytes) {
    const std::size_t length = numberAt<std::uint16_t>(table, lengthOffset);
    if (length == 0 || length > table.size()) {
      break;
    }
    // One that is too short for its own header would lend its counters from the next.
    if (length >= headerBytes && numberAt<std::uint8_t>(table, typeOffset) == interfaceInfo) {
      append(list, table.first(length), calls);
    }
    table = table.subspan(length);
  }
  return list;
}

}  // namespace vantora::InterfaceListReader
