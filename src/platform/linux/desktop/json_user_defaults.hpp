// SPDX-License-Identifier: MIT
//
// The user defaults on Linux: one small JSON object, usually in
// ~/.config/Vantora/preferences.json.
#pragma once

#include <filesystem>

#include "settings/user_defaults.hpp"

namespace vantora {

/// Reads the file anew at each call, so that what another program of ours stored counts
/// at once. A file that is no JSON object reads as empty and stays as the backup when
/// something is stored.
class JsonUserDefaults final : public UserDefaults {
 public:
  /// `applicationSupport` is the user's folder for configurations.
  explicit JsonUserDefaults(const std::filesystem::path& applicationSupport);

  [[nodiscard]] std::optional<std::string> text(std::string_view key) override;
  [[nodiscard]] std::optional<Fault> setText(std::string_view key, std::string_view value) override;

 private:
  std::filesystem::path folder_;
  std::filesystem::path file_;
};

}  // namespace vantora
