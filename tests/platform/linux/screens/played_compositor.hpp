// SPDX-License-Identifier: MIT
#pragma once

#include <wayland-server.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "support/temporary_folder.hpp"

namespace vantora::test {

/// A Wayland compositor that has screens and nothing else, on a socket of the test's own. One
/// thread; turn() lets it work.
class PlayedCompositor {
 public:
  explicit PlayedCompositor(std::uint32_t screenVersion = 4);
  ~PlayedCompositor();
  PlayedCompositor(const PlayedCompositor&) = delete;
  PlayedCompositor& operator=(const PlayedCompositor&) = delete;

  struct Screen {
    wl_global* global = nullptr;
    int scale = 1;
    std::vector<wl_resource*> clients;
  };

  /// As in WAYLAND_DISPLAY.
  [[nodiscard]] std::string address() const { return folder_ / "wayland-test"; }
  Screen& plug(int scale);
  void unplug(Screen& screen);
  void setScale(Screen& screen, int scale);
  /// Takes what clients have sent, and sends what it has to say.
  void turn();

 private:
  TemporaryFolder folder_;
  std::uint32_t screenVersion_;
  wl_display* display_;
  std::vector<std::unique_ptr<Screen>> screens_;
};

}  // namespace vantora::test
