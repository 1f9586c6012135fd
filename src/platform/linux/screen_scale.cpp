// SPDX-License-Identifier: MIT
#include "platform/linux/screen_scale.hpp"

#include <wayland-client.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "platform/linux/answer_apart.hpp"
#include "platform/linux/tray_client.hpp"

namespace vantora {
namespace {

constexpr int greatestScale = 4;

struct Destroy {
  void operator()(wl_display* display) const { wl_display_disconnect(display); }
  void operator()(wl_registry* registry) const { wl_registry_destroy(registry); }
  void operator()(wl_output* output) const { wl_output_destroy(output); }
};

// What the compositor has told so far.
struct Outputs {
  std::int32_t scale = 1;
  std::vector<std::unique_ptr<wl_output, Destroy>> bound;
};

void ignoreGeometry(void* /*data*/, wl_output* /*output*/, std::int32_t /*x*/, std::int32_t /*y*/,
                    std::int32_t /*width*/, std::int32_t /*height*/, std::int32_t /*subpixel*/,
                    const char* /*make*/, const char* /*model*/, std::int32_t /*transform*/) {}
void ignoreMode(void* /*data*/, wl_output* /*output*/, std::uint32_t /*flags*/,
                std::int32_t /*width*/, std::int32_t /*height*/, std::int32_t /*refresh*/) {}
void ignoreDone(void* /*data*/, wl_output* /*output*/) {}
void takeScale(void* data, wl_output* /*output*/, std::int32_t factor) {
  auto& outputs = *static_cast<Outputs*>(data);
  outputs.scale = std::max(outputs.scale, factor);
}
constexpr wl_output_listener outputListener{.geometry = ignoreGeometry,
                                            .mode = ignoreMode,
                                            .done = ignoreDone,
                                            .scale = takeScale,
                                            .name = nullptr,
                                            .description = nullptr};

void bindOutput(void* data, wl_registry* registry, std::uint32_t name, const char* interface,
                std::uint32_t version) {
  // The first version that tells the scale. Its events are those above.
  constexpr std::uint32_t scaleVersion = 2;
  if (interface != std::string_view(wl_output_interface.name) || version < scaleVersion) {
    return;
  }
  auto* output =
      static_cast<wl_output*>(wl_registry_bind(registry, name, &wl_output_interface, scaleVersion));
  if (output != nullptr) {
    wl_output_add_listener(output, &outputListener, data);
    static_cast<Outputs*>(data)->bound.emplace_back(output);
  }
}
void ignoreRemoval(void* /*data*/, wl_registry* /*registry*/, std::uint32_t /*name*/) {}
constexpr wl_registry_listener registryListener{.global = bindOutput,
                                                .global_remove = ignoreRemoval};

int waylandScale(const std::string& address) {
  const std::unique_ptr<wl_display, Destroy> display(wl_display_connect(address.c_str()));
  if (display == nullptr) {
    return 1;
  }
  Outputs outputs;
  const std::unique_ptr<wl_registry, Destroy> registry(wl_display_get_registry(display.get()));
  if (registry == nullptr) {
    return 1;
  }
  wl_registry_add_listener(registry.get(), &registryListener, &outputs);
  // First the globals, then what the bound outputs tell.
  if (wl_display_roundtrip(display.get()) >= 0) {
    wl_display_roundtrip(display.get());
  }
  return outputs.scale;
}

int x11Scale(const std::string& address) {
  TrayClient client;
  return client.open(address) ? client.scale() : 1;
}

}  // namespace

int lookUpScreenScale(const ScreenAddresses& addresses) {
  const int wayland = addresses.wayland.empty() ? 1 : waylandScale(addresses.wayland);
  const int x11 = addresses.x11.empty() ? 1 : x11Scale(addresses.x11);
  return std::clamp(std::max(wayland, x11), 1, greatestScale);
}

int lookUpScreenScaleApart(const ScreenAddresses& addresses, std::chrono::milliseconds limit) {
  if (addresses.wayland.empty() && addresses.x11.empty()) {
    return 1;
  }
  const auto answer =
      answerApart([&addresses] { return std::to_string(lookUpScreenScale(addresses)); }, limit);
  int scale = 1;
  if (answer) {
    std::from_chars(answer->data(), answer->data() + answer->size(), scale);
  }
  return scale;
}

}  // namespace vantora
