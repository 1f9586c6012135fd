// SPDX-License-Identifier: MIT
//
// What is said between us and Claude Code in its SDK streaming mode, without the
// process, the pipes and the time: one JSON object a line, both ways.
#pragma once

#include <array>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "claude/claude_client.hpp"

namespace vantora::ClaudeControl {

/// The command line, without the program's name.
inline constexpr std::array<std::string_view, 11> arguments{"-p",
                                                            "--input-format",
                                                            "stream-json",
                                                            "--output-format",
                                                            "stream-json",
                                                            "--verbose",
                                                            "--no-session-persistence",
                                                            "--strict-mcp-config",
                                                            "--disable-slash-commands",
                                                            "--setting-sources",
                                                            "project"};

/// What the child's environment has besides ours.
[[nodiscard]] std::map<std::string, std::string> environmentChanges();

/// The two requests. Both are sent at once; only the second one's answer counts.
/// Nothing when the text cannot be written.
[[nodiscard]] std::optional<std::string> initializeRequest();
[[nodiscard]] std::optional<std::string> usageRequest();

/// What a line of Claude Code's (without its line feed) decides. Nothing for every line
/// that is not the answer to the usage request, be it no JSON at all.
[[nodiscard]] std::optional<ClaudeClientResult> readLine(std::string_view line);

/// Whether the end of what Claude Code wrote to its standard error tells that there is
/// no usable login.
[[nodiscard]] bool tellsOfLogin(std::string_view errorTail);

}  // namespace vantora::ClaudeControl
