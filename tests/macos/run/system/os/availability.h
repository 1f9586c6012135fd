// SPDX-License-Identifier: MIT
//
// Which version of the system a name came with is checked where the sources are compiled for
// macOS. Here a program asks at run time which one it is on; Clang for Linux would take every
// version for given.
#pragma once

#define API_AVAILABLE(...)
#define API_DEPRECATED(...)

#ifdef __OBJC__
// "@available(macOS 14, *)" becomes "@(standInIsAvailable("macOS 14")).boolValue".
#define available(version, others) (standInIsAvailable(#version)).boolValue
#ifdef __cplusplus
extern "C"
#endif
    bool
    standInIsAvailable(const char* version);
#endif
