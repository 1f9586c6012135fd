// SPDX-License-Identifier: MIT
#include "platform/linux/screens/played_compositor.hpp"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <algorithm>

namespace vantora::test {
namespace {

void tell(wl_resource* screen, int scale) {
  const int version = wl_resource_get_version(screen);
  wl_output_send_geometry(screen, 0, 0, 300, 200, WL_OUTPUT_SUBPIXEL_UNKNOWN, "maker", "model",
                          WL_OUTPUT_TRANSFORM_NORMAL);
  wl_output_send_mode(screen, WL_OUTPUT_MODE_CURRENT, 1920, 1080, 60000);
  if (version >= WL_OUTPUT_SCALE_SINCE_VERSION) {
    wl_output_send_scale(screen, scale);
    wl_output_send_done(screen);
  }
}

int listenAt(const std::string& path) {
  const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  EXPECT_LT(path.size(), sizeof address.sun_path);
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  EXPECT_EQ(::bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  EXPECT_EQ(::listen(socket, 1), 0);
  return socket;
}

}  // namespace

PlayedCompositor::PlayedCompositor(std::uint32_t screenVersion)
    : screenVersion_(screenVersion), display_(wl_display_create()) {
  EXPECT_EQ(wl_display_add_socket_fd(display_, listenAt(address())), 0);
}

PlayedCompositor::~PlayedCompositor() {
  wl_display_destroy_clients(display_);
  wl_display_destroy(display_);
}

PlayedCompositor::Screen& PlayedCompositor::plug(int scale) {
  Screen& screen = *screens_.emplace_back(std::make_unique<Screen>());
  screen.scale = scale;
  screen.global = wl_global_create(
      display_, &wl_output_interface, static_cast<int>(screenVersion_), &screen,
      [](wl_client* client, void* data, std::uint32_t version, std::uint32_t id) {
        Screen& bound = *static_cast<Screen*>(data);
        wl_resource* resource =
            wl_resource_create(client, &wl_output_interface, static_cast<int>(version), id);
        wl_resource_set_implementation(resource, nullptr, &bound, [](wl_resource* gone) {
          std::erase(static_cast<Screen*>(wl_resource_get_user_data(gone))->clients, gone);
        });
        bound.clients.push_back(resource);
        tell(resource, bound.scale);
      });
  return screen;
}

void PlayedCompositor::unplug(Screen& screen) {
  wl_global_remove(screen.global);
}

void PlayedCompositor::setScale(Screen& screen, int scale) {
  screen.scale = scale;
  for (wl_resource* client : screen.clients) {
    tell(client, scale);
  }
}

void PlayedCompositor::turn() {
  wl_event_loop_dispatch(wl_display_get_event_loop(display_), 0);
  wl_display_flush_clients(display_);
}

}  // namespace vantora::test
