// SPDX-License-Identifier: MIT
#pragma once

namespace standin {

/// The workspace's notifications: their observers have returned when these do.
void announceSleep();
void announceWake();

}  // namespace standin
