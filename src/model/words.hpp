// SPDX-License-Identifier: MIT
//
// The texts for the user that depend on the system: each system's own source file defines
// all of them, and the build chooses one of these files. Every other text is the same
// everywhere. UTF-8, constant for the life of the process.
#pragma once

namespace vantora::Words {

// Titles of metrics (model/metric.cpp).
extern const char batteryTemperatureTitle[];
extern const char cpuTemperatureTitle[];
extern const char fan1PercentTitle[];
extern const char fan2PercentTitle[];
extern const char fan1RPMTitle[];
extern const char fan2RPMTitle[];
extern const char inputWattsTitle[];

/// Why a metric that no collector produces has no reading.
extern const char sourceNotValidated[];

// Messages.
extern const char claudeNotLoggedIn[];
extern const char codexExecutableSelected[];
extern const char loginItemEnabled[];
extern const char loginItemNeedsApproval[];
extern const char windowProgramMissing[];  ///< What to install where the window's program is not.

// The settings window.
extern const char startAtLoginLabel[];  ///< With the mnemonic's "&".
extern const char batteryNote[];
extern const char sensorNote[];
extern const char claudeQueryNote[];
extern const char claudeLoginNote[];

}  // namespace vantora::Words
