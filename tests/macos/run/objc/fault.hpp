// SPDX-License-Identifier: MIT
#pragma once

namespace standin {

/// Ends the program with what it did wrong, on standard error. From any thread. The text
/// begins with "stand-in: ", which tests and scripts look for.
[[noreturn]] void fault(const char* format, ...) __attribute__((format(printf, 1, 2)));

}  // namespace standin
