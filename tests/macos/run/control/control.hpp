// SPDX-License-Identifier: MIT
//
// How a script uses a program that runs on the stand-ins: lines of text on a descriptor,
// whose number is in STAND_IN_CONTROL, each answered by one line of JSON.
#pragma once

namespace standin {

/// Begins to listen when the environment asks for it. Once, when the run loop first runs.
void listenForCommands();

}  // namespace standin
