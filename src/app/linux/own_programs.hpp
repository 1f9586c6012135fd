// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>

namespace vantora {

/// Where Vantora's programs are, in a build folder as where they are installed: those that
/// people start are in one folder. The paths are not looked for, but for glyphs().
class OwnPrograms {
 public:
  /// From the executable of this process.
  OwnPrograms();
  /// From the executable of any of those that people start.
  explicit OwnPrograms(const std::filesystem::path& executable);

  [[nodiscard]] std::string agent() const { return folder_ / "vantora"; }
  /// The window, the menu and the tool tip.
  [[nodiscard]] std::string settings() const { return folder_ / "vantora-settings"; }
  /// Draws characters. People never start it: where it is installed it is in libexec.
  [[nodiscard]] std::string glyphs() const;

 private:
  std::filesystem::path folder_;
};

}  // namespace vantora
