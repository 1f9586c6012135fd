// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <utility>
#include <vector>

#include "platform/linux/network/rtnetlink_dump.hpp"
#include "platform/linux/network/rtnetlink_message.hpp"
#include "platform/linux/network/stacked_links.hpp"

namespace {

using namespace vantora::Rtnetlink;

void require(bool condition) {
  if (!condition) {
    std::abort();
  }
}

void parse(Bytes messages) {
  std::vector<vantora::KnownLink> links;
  for (Link& link : parseLinks(messages)) {
    require(link.index != 0 && !link.name.empty());
    links.push_back({std::move(link), false});
  }
  for (const vantora::KnownLink& known : links) {
    const std::vector<std::size_t> under = vantora::linksUnder(links, known.link.index);
    require(!under.empty() && under.size() <= links.size());
  }
  const std::vector<std::uint32_t> addressed = parseAddressedLinks(messages);
  require(std::is_sorted(addressed.begin(), addressed.end()));
  require(parseDefaultRoutes(messages).size() <= messages.size());
}

}  // namespace

// The bytes as one datagram, and as two that were cut in the middle.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const Bytes bytes = std::as_bytes(std::span(data, size));
  parse(bytes);
  (void)parseChanges(bytes);
  MessageReader reader(bytes);
  std::uint32_t sequence = 0;
  while (const auto message = reader.next()) {
    sequence = message->sequence;
    (void)parseError(*message);
    (void)parseLinkCounters(*message, 4);
  }
  DumpAssembler dump(sequence);
  if (dump.take(bytes.first(size / 2)) == DumpAssembler::State::open) {
    dump.take(bytes.subspan(size / 2));
  }
  if (dump.state() == DumpAssembler::State::failed) {
    require(dump.error() > 0);
  } else if (dump.state() == DumpAssembler::State::done) {
    const std::vector<std::byte> messages = dump.takeMessages();
    require(messages.size() <= size + 4);
    parse(messages);
  }
  return 0;
}
