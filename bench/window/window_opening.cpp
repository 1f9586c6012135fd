// SPDX-License-Identifier: MIT
//
// window_opening EMPTY-WINDOW VANTORA-SETTINGS [RUNS]
//
// Measures on an X11 screen of its own (scripts/bench-window gives it one) how long a
// window takes from the start of its process to its first frame on the screen, in turn: an
// empty window, and the settings window with the usual three modules and with 24. Exits
// with 1 when the settings window takes half a second or more.
#include <poll.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "settings/conversation/settings_protocol.hpp"
#include "window_program.hpp"

namespace {

using vantora::bench::Program;
using vantora::bench::stop;
using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;
constexpr Milliseconds limit{500};
constexpr Milliseconds timeout{20'000};

// A point of the screen that every window here covers, with its ground, and that is black
// without a window.
class Screen {
 public:
  Screen() : connection_(xcb_connect(nullptr, nullptr)) {
    if (xcb_connection_has_error(connection_) != 0) {
      stop("no X11 display");
    }
    root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
  }
  ~Screen() { xcb_disconnect(connection_); }
  Screen(const Screen&) = delete;
  Screen& operator=(const Screen&) = delete;

  [[nodiscard]] bool showsAWindow() const {
    auto* image = xcb_get_image_reply(
        connection_,
        xcb_get_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, root_, 4, 516, 1, 1, 0xffffff),
        nullptr);
    if (image == nullptr) {
      stop("the screen cannot be read");
    }
    const auto* bytes = xcb_get_image_data(image);
    const bool isLit = bytes[0] != 0 || bytes[1] != 0 || bytes[2] != 0;
    std::free(image);
    return isLit;
  }

 private:
  xcb_connection_t* connection_;
  xcb_window_t root_ = 0;
};

// `state` goes to the program once it is ready; empty for one that says nothing.
Milliseconds opening(const Screen& screen, const std::string& path, const std::string& state) {
  const auto start = Clock::now();
  const Program program(path);
  bool isTold = state.empty();
  while (!screen.showsAWindow()) {
    if (program.hasSpoken() && !isTold) {
      program.tell(state);
      isTold = true;
    }
    if (Clock::now() - start > timeout) {
      stop("no window came from " + path);
    }
  }
  return Clock::now() - start;
}

std::string stateWith(std::size_t modules) {
  vantora::WindowState state;
  auto& list = state.configuration.modules;
  while (list.size() < modules) {
    list.push_back(list[list.size() % 3]);
    list.back().id = vantora::UUID::random();
  }
  state.picture = {0, 1, 0, 0, {}, std::nullopt};
  return vantora::SettingsProtocol::stateLine(state, {1, 0, vantora::allWindowFields});
}

Milliseconds medianOf(std::vector<Milliseconds> times) {
  std::sort(times.begin(), times.end());
  return times[times.size() / 2];
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    stop("usage: window_opening EMPTY-WINDOW VANTORA-SETTINGS [RUNS]");
  }
  const int runs = argc > 3 ? std::max(1, std::atoi(argv[3])) : 20;
  struct Window {
    const char* name;
    std::string program;
    std::string state;
    std::vector<Milliseconds> times;
  };
  Window windows[] = {{"empty window", argv[1], {}, {}},
                      {"settings, 3 modules", argv[2], stateWith(3), {}},
                      {"settings, 24 modules", argv[2], stateWith(24), {}}};
  const Screen screen;
  for (int run = 0; run <= runs; ++run) {
    for (Window& window : windows) {
      const Milliseconds time = opening(screen, window.program, window.state);
      if (run > 0) {  // The first one reads the programs from the disk.
        window.times.push_back(time);
      }
      const auto end = Clock::now();
      while (screen.showsAWindow() && Clock::now() - end < timeout) {
        ::poll(nullptr, 0, 5);
      }
    }
  }
  const Milliseconds empty = medianOf(windows[0].times);
  Milliseconds worst{0};
  std::printf("%-22s %10s %10s %8s   (%d runs)\n", "", "median ms", "worst ms", "ratio", runs);
  for (const Window& window : windows) {
    const Milliseconds median = medianOf(window.times);
    const Milliseconds most = *std::max_element(window.times.begin(), window.times.end());
    worst = std::max(worst, &window == &windows[0] ? Milliseconds{0} : most);
    std::printf("%-22s %10.1f %10.1f %7.2fx\n", window.name, median.count(), most.count(),
                median / empty);
  }
  return worst < limit ? 0 : 1;
}
