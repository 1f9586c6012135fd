// SPDX-License-Identifier: MIT
#include "settings/window_state.hpp"

namespace vantora {

WindowFields differences(const WindowState& one, const WindowState& other) {
  WindowFields fields;
  const auto note = [&fields](WindowField field, bool differs) {
    if (differs) {
      fields.insert(field);
    }
  };
  note(WindowField::configuration, one.configuration != other.configuration);
  note(WindowField::networkName, one.networkName != other.networkName);
  note(WindowField::codex, one.codex != other.codex);
  note(WindowField::claude, one.claude != other.claude);
  note(WindowField::notice, one.notice != other.notice);
  note(WindowField::loginItemStatus, one.loginItemStatus != other.loginItemStatus);
  note(WindowField::pendingScrollID, one.pendingScrollID != other.pendingScrollID);
  note(WindowField::picture, one.picture != other.picture);
  return fields;
}

}  // namespace vantora
