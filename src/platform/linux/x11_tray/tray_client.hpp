// SPDX-License-Identifier: MIT
//
// The requests to the X server that a docked window needs: finding the tray, making a
// window of the tray's visual, asking for the dock. No policy and no events.
#pragma once

#include <xcb/xcb.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "platform/linux/x11_tray/xembed_pixels.hpp"

namespace vantora {

struct XFree {
  void operator()(void* memory) const { std::free(memory); }
};
template <typename T>
using XReply = std::unique_ptr<T, XFree>;

/// One display with at most one window of ours. One thread. Calls that want an answer, and
/// xcb when its socket is full, wait for the server for as long as that takes.
class TrayClient {
 public:
  enum Atom : std::uint8_t {
    selection,
    manager,
    opcode,
    xembedInfo,
    visual,
    colours,
    orientation,
    wmName,
    utf8,
    atomCount
  };

  TrayClient() = default;
  ~TrayClient();
  TrayClient(const TrayClient&) = delete;
  TrayClient& operator=(const TrayClient&) = delete;

  /// False where there is no display, or none whose images have our byte order. From then
  /// on the root window receives a client message when a tray starts.
  [[nodiscard]] bool open(const std::string& display);
  /// The tray that runs now, watched for its end; false when there is none.
  [[nodiscard]] bool findTray();
  /// A window of the tray's visual, not shown yet. False for pixels that are not ours.
  [[nodiscard]] bool makeWindow(int width, int height);
  void requestDocking() const;
  void readColours();
  void readOrientation();
  /// Says to the embedder that the window wants to be shown, and shows it.
  void map() const;
  void setSize(int width, int height) const;
  /// The window's width and height now, in pixels; zero when it is gone.
  [[nodiscard]] std::pair<int, int> size() const;
  void draw(int width, int height, std::span<const std::uint32_t> pixels) const;
  void destroyWindow();

  [[nodiscard]] xcb_connection_t* x() const { return x_; }
  [[nodiscard]] const xcb_screen_t& screen() const { return *screen_; }
  [[nodiscard]] xcb_window_t root() const { return screen_->root; }
  [[nodiscard]] xcb_window_t tray() const { return tray_; }
  [[nodiscard]] xcb_window_t window() const { return window_; }
  [[nodiscard]] xcb_atom_t atom(Atom name) const { return atoms_[name]; }
  [[nodiscard]] int scale() const { return scale_; }
  [[nodiscard]] TrayDepth trayDepth() const { return trayDepth_; }
  /// What pixels of an opaque tray hold beside their colour: full alpha where the window's
  /// visual has it.
  [[nodiscard]] std::uint32_t opaqueAlpha() const {
    return trayDepth_ == TrayDepth::opaque && visual_.depth == 32 ? 0xFF000000U : 0;
  }
  [[nodiscard]] Ink ink() const { return ink_; }
  /// Whether the tray arranges its icons in a column.
  [[nodiscard]] bool isVertical() const { return isVertical_; }

 private:
  void internAtoms(int screenNumber);
  void select(xcb_window_t target, std::uint32_t events) const;
  [[nodiscard]] int bitsPerPixel(std::uint8_t depth) const;
  struct Visual {
    xcb_visualid_t id = 0;
    std::uint8_t depth = 0;
  };
  [[nodiscard]] Visual findVisual(const std::function<bool(Visual visual)>& isWanted) const;
  void chooseVisual();
  void setNames() const;
  void setText(xcb_atom_t property, xcb_atom_t type, std::string_view text) const;
  void setInfo(std::uint32_t flags) const;

  xcb_connection_t* x_ = nullptr;
  xcb_screen_t* screen_ = nullptr;
  int scale_ = 1;
  std::array<xcb_atom_t, atomCount> atoms_{};
  xcb_window_t tray_ = XCB_NONE;
  xcb_window_t window_ = XCB_NONE;
  xcb_colormap_t colormap_ = XCB_NONE;
  xcb_gcontext_t context_ = XCB_NONE;
  Visual visual_;  // the window's; depth 0 where none has our pixels
  TrayDepth trayDepth_ = TrayDepth::opaque;
  Ink ink_ = Ink::lightOnPlate;
  bool isVertical_ = false;
};

}  // namespace vantora
