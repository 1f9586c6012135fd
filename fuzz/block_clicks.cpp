// SPDX-License-Identifier: MIT
//
// What a bar writes to vantora-print: whole, and in pieces of a few bytes, with the same clicks
// found in both.
#include "app/print/block_clicks.hpp"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using vantora::BlockClicks;
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  std::size_t whole = 0;
  BlockClicks(([&](vantora::BlockButton) { ++whole; })).feed(bytes);
  std::size_t inPieces = 0;
  BlockClicks clicks([&](vantora::BlockButton) { ++inPieces; });
  constexpr std::size_t piece = 7;
  for (std::size_t start = 0; start < size; start += piece) {
    clicks.feed(bytes.substr(start, piece));
  }
  if (whole != inPieces) {
    std::abort();
  }
  return 0;
}
