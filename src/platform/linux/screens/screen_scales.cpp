// SPDX-License-Identifier: MIT
#include "platform/linux/screens/screen_scales.hpp"

#include <wayland-client.h>

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <vector>

#include "runtime/readable_watch.hpp"

namespace vantora {

class ScreenScales::Connection {
 public:
  explicit Connection(const std::string& display) : display_(wl_display_connect(display.c_str())) {}
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  /// `onEvents` comes whenever the compositor has said something or is gone.
  [[nodiscard]] bool start(uv_loop_t& loop, std::function<void()> onEvents) {
    if (display_ == nullptr) {
      return false;
    }
    static constexpr wl_registry_listener listener{.global = onGlobal,
                                                   .global_remove = onGlobalRemove};
    registry_.reset(wl_display_get_registry(display_.get()));
    return registry_ != nullptr &&
           wl_registry_add_listener(registry_.get(), &listener, this) == 0 &&
           wl_display_flush(display_.get()) >= 0 &&
           watch_.start(loop, wl_display_get_fd(display_.get()), std::move(onEvents)) == 0;
  }

  /// Takes what has arrived. False when the compositor is gone.
  [[nodiscard]] bool read() {
    wl_display* display = display_.get();
    while (wl_display_prepare_read(display) != 0) {
      if (wl_display_dispatch_pending(display) < 0) {
        return false;
      }
    }
    if (wl_display_read_events(display) != 0 || wl_display_dispatch_pending(display) < 0) {
      return false;
    }
    wl_display_flush(display);  // what was asked for meanwhile
    return wl_display_get_error(display) == 0;
  }

  /// Whether it is another one than when this was last asked. The latest stays where there is no
  /// screen any more.
  [[nodiscard]] bool hasNewScale() {
    int largest = 0;
    for (const std::unique_ptr<Screen>& screen : screens_) {
      if (screen->scale == 0) {
        return false;
      }
      largest = std::max(largest, screen->scale);
    }
    if (largest == 0 || largest == scale_) {
      return false;
    }
    scale_ = largest;
    return true;
  }
  [[nodiscard]] int scale() const { return scale_; }

 private:
  struct Release {
    void operator()(wl_display* display) const { wl_display_disconnect(display); }
    void operator()(wl_registry* registry) const { wl_registry_destroy(registry); }
    void operator()(wl_output* output) const { wl_output_destroy(output); }
  };
  struct Screen {
    std::unique_ptr<wl_output, Release> output;
    std::uint32_t name = 0;
    int announced = 1;  // until it says another one
    int scale = 0;      // 0: it has not said everything yet
  };
  // Of the version that is bound; later ones have more events.
  static constexpr wl_output_listener screenListener = [] {
    wl_output_listener listener{};
    listener.geometry = [](void*, wl_output*, std::int32_t, std::int32_t, std::int32_t,
                           std::int32_t, std::int32_t, const char*, const char*, std::int32_t) {};
    listener.mode = [](void*, wl_output*, std::uint32_t, std::int32_t, std::int32_t, std::int32_t) {
    };
    listener.scale = [](void* screen, wl_output*, std::int32_t scale) {
      static_cast<Screen*>(screen)->announced = scale;
    };
    listener.done = [](void* data, wl_output*) {
      auto* screen = static_cast<Screen*>(data);
      screen->scale = screen->announced;
    };
    return listener;
  }();

  static void onGlobal(void* connection, wl_registry* registry, std::uint32_t name,
                       const char* interface, std::uint32_t version) {
    if (std::string_view(interface) == wl_output_interface.name) {
      static_cast<Connection*>(connection)->add(registry, name, version);
    }
  }
  static void onGlobalRemove(void* connection, wl_registry*, std::uint32_t name) {
    std::erase_if(static_cast<Connection*>(connection)->screens_,
                  [name](const std::unique_ptr<Screen>& screen) { return screen->name == name; });
  }

  void add(wl_registry* registry, std::uint32_t name, std::uint32_t version) {
    // The first with scales and with an event that says that all has been said.
    constexpr std::uint32_t scaleVersion = WL_OUTPUT_SCALE_SINCE_VERSION;
    auto* output = static_cast<wl_output*>(
        wl_registry_bind(registry, name, &wl_output_interface, std::min(version, scaleVersion)));
    if (output == nullptr) {
      return;
    }
    auto screen = std::make_unique<Screen>();
    screen->output.reset(output);
    screen->name = name;
    screen->scale = version < scaleVersion ? 1 : 0;
    wl_output_add_listener(output, &screenListener, screen.get());
    screens_.push_back(std::move(screen));
  }

  // Released from the last to the first.
  std::unique_ptr<wl_display, Release> display_;
  std::unique_ptr<wl_registry, Release> registry_;
  std::vector<std::unique_ptr<Screen>> screens_;  // libwayland keeps their addresses
  int scale_ = 0;
  ReadableWatch watch_;
};

ScreenScales::ScreenScales(uv_loop_t& loop) : loop_(loop) {}

ScreenScales::~ScreenScales() = default;

void ScreenScales::follow(const std::string& display) {
  if (connection_ != nullptr || display.empty()) {
    return;
  }
  connection_ = std::make_unique<Connection>(display);
  const auto read = [this] {
    if (!connection_->read()) {
      lose();
    } else if (connection_->hasNewScale()) {
      onChange(connection_->scale());
    }
  };
  if (!connection_->start(loop_, read)) {
    connection_.reset();
  }
}

void ScreenScales::lose() {
  connection_.reset();
  onChange(std::nullopt);
}

}  // namespace vantora
