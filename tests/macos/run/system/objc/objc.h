// SPDX-License-Identifier: MIT
#pragma once

// As on arm64, where the language's truth values are C's.
typedef bool BOOL;
#define YES true
#define NO false
#define nil nullptr
