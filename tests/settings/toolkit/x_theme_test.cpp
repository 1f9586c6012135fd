// SPDX-License-Identifier: MIT
//
// The theme's name from a settings manager of the test's own, on a display of its own.
#include "settings/toolkit/x_theme.hpp"

#include <gtest/gtest.h>
#include <poll.h>

#include <cstdlib>
#include <optional>

#include "platform/linux/x11_tray/private_display.hpp"
#include "settings/toolkit/x_settings_bytes.hpp"

namespace vantora {
namespace {

// A client with a window, as a desktop's settings manager has one.
class Manager {
 public:
  explicit Manager(const std::string& display)
      : connection_(xcb_connect(display.c_str(), nullptr)),
        window_(xcb_generate_id(connection_)),
        property_(atom("_XSETTINGS_SETTINGS")) {
    const auto* screen = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
    xcb_create_window(connection_, 0, window_, screen->root, 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_set_selection_owner(connection_, window_, atom("_XSETTINGS_S0"), XCB_CURRENT_TIME);
    settle();
  }
  ~Manager() { xcb_disconnect(connection_); }
  Manager(const Manager&) = delete;
  Manager& operator=(const Manager&) = delete;

  void publish(const std::vector<std::uint8_t>& bytes) {
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window_, property_, property_, 8,
                        static_cast<std::uint32_t>(bytes.size()), bytes.data());
    settle();
  }
  void changeAnother() {
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window_, atom("ANOTHER"), property_, 8,
                        0, nullptr);
    settle();
  }

 private:
  // Until the server has done what it was asked.
  void settle() {
    std::free(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
  }
  xcb_atom_t atom(std::string_view name) {
    auto* reply = xcb_intern_atom_reply(
        connection_,
        xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.data()),
        nullptr);
    const xcb_atom_t found = reply->atom;
    std::free(reply);
    return found;
  }

  xcb_connection_t* connection_;
  xcb_window_t window_;
  xcb_atom_t property_;
};

std::vector<std::uint8_t> settings(std::string_view theme) {
  return test::XSettingsBytes(false).integer("Xft/DPI", 96).text("Net/ThemeName", theme).bytes();
}

class XThemeTest : public testing::Test {
 protected:
  void SetUp() override {
    if (display_.name().empty()) {
      GTEST_SKIP() << "Xvfb is not installed";
    }
    connection_ = xcb_connect(display_.name().c_str(), nullptr);
  }
  ~XThemeTest() override {
    if (connection_ != nullptr) {
      xcb_disconnect(connection_);
    }
  }
  // Whether the next event that comes says that the name may be another.
  bool isNextAChange(const XTheme& theme) {
    constexpr int limit = 10'000;  // milliseconds
    xcb_flush(connection_);
    auto* event = xcb_poll_for_event(connection_);
    pollfd socket{xcb_get_file_descriptor(connection_), POLLIN, 0};
    while (event == nullptr && ::poll(&socket, 1, limit) > 0) {
      event = xcb_poll_for_event(connection_);
    }
    const bool isChange = event != nullptr && theme.isChangedBy(*event);
    std::free(event);
    return isChange;
  }

  test::PrivateDisplay display_;
  xcb_connection_t* connection_ = nullptr;
};

TEST_F(XThemeTest, IsWhatTheSettingsManagerSaysNowAndLater) {
  Manager manager(display_.name());
  manager.publish(settings("Menta"));
  const XTheme theme(connection_, 0);
  EXPECT_EQ(theme.name(), "Menta");
  manager.publish(settings("ContrastHighInverse"));
  EXPECT_TRUE(isNextAChange(theme));
  EXPECT_EQ(theme.name(), "ContrastHighInverse");
  manager.changeAnother();
  EXPECT_FALSE(isNextAChange(theme));
}

TEST_F(XThemeTest, HasNoNameWithoutAManagerOrItsSettings) {
  EXPECT_EQ(XTheme(connection_, 0).name(), "");
  const Manager manager(display_.name());
  EXPECT_EQ(XTheme(connection_, 0).name(), "");
}

TEST_F(XThemeTest, HasNoNameOnceTheManagerIsGone) {
  std::optional<Manager> manager(std::in_place, display_.name());
  manager->publish(settings("HighContrast"));
  const XTheme theme(connection_, 0);
  EXPECT_EQ(theme.name(), "HighContrast");
  manager.reset();
  EXPECT_TRUE(isNextAChange(theme));
  EXPECT_EQ(theme.name(), "");
}

}  // namespace
}  // namespace vantora
