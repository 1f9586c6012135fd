// SPDX-License-Identifier: MIT
//
// Takes what is the user's own out of texts that go into bug reports. Pure.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "model/json.hpp"

namespace vantora {

/// Conceals the user's home folder ("~") and those of others, addresses of hardware and network,
/// also where a name was made of one ("enx001122334455"), what a device's name tells of its
/// serial number ("hid-0123-battery"), and e-mail addresses. Control characters become "?".
class Concealer {
 public:
  /// `homes`: every path of the user's home folder, as the environment has it and with links
  /// resolved; without a trailing separator. "" and "/" are none.
  explicit Concealer(std::vector<std::string> homes);

  [[nodiscard, gnu::cold]] std::string operator()(std::string_view text) const;
  /// The same for every text in a document; not for the names of members.
  [[nodiscard, gnu::cold]] Json document(const Json& value) const;

 private:
  std::vector<std::string> homes_;  // the longest first
};

}  // namespace vantora
