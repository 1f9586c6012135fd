// SPDX-License-Identifier: MIT
#include "settings/conversation/window_state.hpp"

#include <algorithm>

namespace vantora {
namespace {

bool saysTheSame(const MetricReading& one, const MetricReading& other) {
  if (one.quality != Quality::valid || other.quality != Quality::valid) {
    return one == other;
  }
  return one.metric == other.metric && one.text == other.text && one.source == other.source &&
         one.reason == other.reason;
}

}  // namespace

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
  note(WindowField::undoable, one.undoable != other.undoable);
  note(WindowField::links, one.links != other.links);
  note(WindowField::backupPath, one.backupPath != other.backupPath);
  note(WindowField::readings,
       !std::equal(one.readings.begin(), one.readings.end(), other.readings.begin(),
                   other.readings.end(), saysTheSame));
  note(WindowField::square, one.square != other.square);
  return fields;
}

}  // namespace vantora
