// SPDX-License-Identifier: MIT
#include "platform/linux/screen_scale.hpp"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <wayland-server.h>
#include <xcb/xcb.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "platform/linux/private_display.hpp"
#include "support/temporary_folder.hpp"

namespace vantora {
namespace {

using test::PrivateDisplay;
using test::TemporaryFolder;

/// A compositor with screens of these scales and nothing else, on a thread of its own.
class ScriptedCompositor {
 public:
  explicit ScriptedCompositor(const std::string& address, std::vector<int> scales,
                              int version = wl_output_interface.version)
      : scales_(std::move(scales)) {
    wl_display_add_socket(display_, address.c_str());
    for (int& scale : scales_) {
      wl_global_create(display_, &wl_output_interface, version, &scale, &ScriptedCompositor::bind);
    }
    wake_ = wl_event_loop_add_timer(
        wl_display_get_event_loop(display_),
        [](void* self) { return static_cast<ScriptedCompositor*>(self)->turn(); }, this);
    wl_event_source_timer_update(wake_, 1);
    thread_ = std::thread([this] { wl_display_run(display_); });
  }
  ~ScriptedCompositor() {
    isEnding_ = true;
    thread_.join();
    wl_event_source_remove(wake_);
    wl_display_destroy_clients(display_);
    wl_display_destroy(display_);
  }
  ScriptedCompositor(const ScriptedCompositor&) = delete;
  ScriptedCompositor& operator=(const ScriptedCompositor&) = delete;

 private:
  static void bind(wl_client* client, void* scale, std::uint32_t version, std::uint32_t id) {
    wl_resource* output =
        wl_resource_create(client, &wl_output_interface, static_cast<int>(version), id);
    wl_output_send_geometry(output, 0, 0, 300, 200, 0, "maker", "model", 0);
    wl_output_send_mode(output, 3, 1920, 1080, 60'000);
    wl_output_send_scale(output, *static_cast<int*>(scale));
    wl_output_send_done(output);
  }
  // wl_display_terminate() is not for other threads.
  int turn() {
    if (isEnding_) {
      wl_display_terminate(display_);
    } else {
      wl_event_source_timer_update(wake_, 1);
    }
    return 0;
  }

  std::vector<int> scales_;
  wl_display* display_ = wl_display_create();
  wl_event_source* wake_ = nullptr;
  std::atomic<bool> isEnding_ = false;
  std::thread thread_;
};

class ScreenScaleTest : public testing::Test {
 protected:
  [[nodiscard]] std::string address() const { return (folder / "compositor").string(); }

  TemporaryFolder folder;
};

TEST_F(ScreenScaleTest, IsTheGreatestOfTheCompositorsScreens) {
  const ScriptedCompositor compositor(address(), {1, 3, 2});
  EXPECT_EQ(lookUpScreenScale({address(), {}}), 3);
  EXPECT_EQ(lookUpScreenScaleApart({address(), {}}), 3);
}

TEST_F(ScreenScaleTest, IsFourAtMost) {
  const ScriptedCompositor compositor(address(), {9});
  EXPECT_EQ(lookUpScreenScale({address(), {}}), 4);
}

TEST_F(ScreenScaleTest, IsOneUnderACompositorWithoutScreens) {
  const ScriptedCompositor compositor(address(), {});
  EXPECT_EQ(lookUpScreenScale({address(), {}}), 1);
}

TEST_F(ScreenScaleTest, IsOneWhereThereIsNoScreen) {
  EXPECT_EQ(lookUpScreenScale({}), 1);
  EXPECT_EQ(lookUpScreenScaleApart({}), 1);
}

TEST_F(ScreenScaleTest, IsOneWhereNobodyIsAtTheAddress) {
  EXPECT_EQ(lookUpScreenScaleApart({address(), ":4093"}), 1);
}

TEST_F(ScreenScaleTest, IsOneUnderACompositorThatDoesNotAnswer) {
  const int listening = ::socket(AF_UNIX, SOCK_STREAM, 0);
  sockaddr_un where{};
  where.sun_family = AF_UNIX;
  address().copy(where.sun_path, sizeof where.sun_path - 1);
  ASSERT_EQ(::bind(listening, reinterpret_cast<sockaddr*>(&where), sizeof where), 0);
  ASSERT_EQ(::listen(listening, 1), 0);
  EXPECT_EQ(lookUpScreenScaleApart({address(), {}}, std::chrono::milliseconds{0}), 1);
  ::close(listening);
}

TEST_F(ScreenScaleTest, FollowsTheDotsPerInchOfAnXServer) {
  const PrivateDisplay display;
  if (display.name().empty()) {
    GTEST_SKIP() << "Xvfb is not installed";
  }
  ASSERT_EQ(lookUpScreenScaleApart({{}, display.name()}), 1);
  xcb_connection_t* x = xcb_connect(display.name().c_str(), nullptr);
  const std::string resources = "Xcursor.size:\t48\nXft.dpi:\t192\n";
  xcb_change_property(x, XCB_PROP_MODE_REPLACE,
                      xcb_setup_roots_iterator(xcb_get_setup(x)).data->root,
                      XCB_ATOM_RESOURCE_MANAGER, XCB_ATOM_STRING, 8,
                      static_cast<std::uint32_t>(resources.size()), resources.data());
  free(xcb_get_input_focus_reply(x, xcb_get_input_focus(x), nullptr));  // it has arrived
  EXPECT_EQ(lookUpScreenScaleApart({{}, display.name()}), 2);
  xcb_disconnect(x);
}

}  // namespace
}  // namespace vantora
