// SPDX-License-Identifier: MIT
//
// The protocol with Claude Code in its SDK streaming mode, without process, pipes and time: one
// JSON object a line, both ways.
#pragma once

#include <array>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "quota/claude/claude_client.hpp"

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

/// The variables that are added to the child's environment.
[[nodiscard]] std::map<std::string, std::string> environmentChanges();

/// The two requests. Both are sent at once; only the answer to the second one counts. Nothing when
/// the text cannot be serialized.
[[nodiscard]] std::optional<std::string> initializeRequest();
[[nodiscard]] std::optional<std::string> usageRequest();

/// The result that a line from Claude Code (without its line feed) decides. Nothing for a line that
/// is not the answer to the usage request, whether it is JSON or not.
[[nodiscard]] std::optional<ClaudeClientResult> readLine(std::string_view line);

/// Whether `errorTail`, the end of what Claude Code wrote to its standard error, reports that there
/// is no usable login.
[[nodiscard]] bool reportsMissingLogin(std::string_view errorTail);

}  // namespace vantora::ClaudeControl
