// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>

namespace vantora::test {

/// Runs `body`, with its expectations, in a child process in which a disk of `bytes` bytes
/// is mounted on `folder`: a tmpfs that no other process sees. Root can do so, and others where
/// the kernel lets them have namespaces of their own; elsewhere the test is skipped with
/// the kernel's reason. What fails in the body fails the test.
void onASmallDisk(const std::filesystem::path& folder, std::size_t bytes,
                  const std::function<void()>& body);

/// Writes a file on the disk of `folder` until `left` bytes at most are free, and answers
/// its name.
std::filesystem::path fillDisk(const std::filesystem::path& folder, std::size_t left);

}  // namespace vantora::test
