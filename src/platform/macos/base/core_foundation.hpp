// SPDX-License-Identifier: MIT
//
// Ownership and reading of Core Foundation objects, in plain C++.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace vantora {

/// Owns what a Create or Copy function returned, or nothing. Releases it when destroyed.
template <typename Ref>
class CFOwned {
 public:
  CFOwned() = default;
  explicit CFOwned(CF_RELEASES_ARGUMENT Ref ref) : ref_(ref) {}
  ~CFOwned() {
    if (ref_ != nullptr) {
      CFRelease(ref_);
    }
  }
  CFOwned(CFOwned&& other) noexcept : ref_(std::exchange(other.ref_, nullptr)) {}
  CFOwned& operator=(CFOwned&& other) noexcept {
    std::swap(ref_, other.ref_);
    return *this;
  }

  [[nodiscard]] Ref get() const { return ref_; }
  explicit operator bool() const { return ref_ != nullptr; }

 private:
  Ref ref_ = nullptr;
};

/// The object as a dictionary, array, string, number or boolean, if it is one; not owned.
[[nodiscard]] CFDictionaryRef asDictionary(CFTypeRef object);
[[nodiscard]] CFArrayRef asArray(CFTypeRef object);
[[nodiscard]] std::optional<std::string> asText(CFTypeRef object);  ///< UTF-8
[[nodiscard]] std::optional<double> asNumber(CFTypeRef object);
[[nodiscard]] std::optional<bool> asFlag(CFTypeRef object);

/// A string of that UTF-8 text; nothing when it is none.
[[nodiscard]] CFOwned<CFStringRef> makeString(std::string_view text);

}  // namespace vantora
