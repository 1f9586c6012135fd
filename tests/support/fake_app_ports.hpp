// SPDX-License-Identifier: MIT
//
// The application's ports as a test sees them: they remember what they were asked.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "ports/power_events.hpp"
#include "ports/settings_window.hpp"
#include "ports/status_item.hpp"
#include "ports/url_opener.hpp"

namespace vantora::test {

/// A bar of 24 points.
class FakeStatusItem final : public StatusItem {
 public:
  [[nodiscard]] double thickness() const override { return 24; }
  void show(const StatusPresentation& presentation) override { shown.push_back(presentation); }
  void setActions(StatusItemActions newActions) override { actions = std::move(newActions); }

  std::vector<StatusPresentation> shown;
  StatusItemActions actions;
};

/// A system whose power a test controls through the handlers.
class FakePowerEvents final : public PowerEvents {
 public:
  /// `handlers` receives what start() is given, and is emptied when the telling ends.
  explicit FakePowerEvents(Handlers& handlers) : handlers_(handlers) {}
  ~FakePowerEvents() override { handlers_ = {}; }
  FakePowerEvents(const FakePowerEvents&) = delete;
  FakePowerEvents& operator=(const FakePowerEvents&) = delete;
  void start(Handlers handlers) override { handlers_ = std::move(handlers); }

 private:
  Handlers& handlers_;
};

class FakeSettingsWindow final : public SettingsWindow {
 public:
  void show(std::string_view activationToken) override {
    tokens.emplace_back(activationToken);
    isOpen = true;
  }
  [[nodiscard]] bool isVisible() const override { return isOpen; }
  void showStatus(const StatusPresentation& presentation) override {
    previews.push_back(presentation);
  }
  void close() override { isOpen = false; }

  bool isOpen = false;
  std::vector<std::string> tokens;  ///< One for each show().
  std::vector<StatusPresentation> previews;
};

class FakeUrlOpener final : public UrlOpener {
 public:
  void open(const std::string& url) override { opened.push_back(url); }

  std::vector<std::string> opened;
};

}  // namespace vantora::test
