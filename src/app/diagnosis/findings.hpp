// SPDX-License-Identifier: MIT
//
// Parts of a diagnosis that are found alike on every system.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "app/diagnosis/diagnosis.hpp"
#include "model/configuration.hpp"
#include "model/sample.hpp"
#include "settings/login_item.hpp"

namespace vantora {

/// The document at the path, its age and whether it could be in force.
[[nodiscard]] FileReport configurationFile(const std::filesystem::path& path);

/// Whether the program starts with the session.
[[nodiscard]] std::string loginItemText(LoginItemStatus status);

/// Every metric that a source of this machine produces: the agent's reading where it has one, else
/// that of `own`.
[[nodiscard]] std::vector<ReadingReport> readingsOf(const MetricSnapshot& own,
                                                    const std::optional<AgentReport>& agent,
                                                    WallTime now);

/// Notes in the two reports whether the configuration wants and shows the quotas, and what the
/// agent says of them.
void addQuotas(const AppConfiguration& configuration, const std::optional<AgentReport>& agent,
               AssistantReport& codex, AssistantReport& claude);

/// The agent's answer as it came, read. Where it cannot be, the presence says so.
void takeAgentAnswer(std::string_view answer, Diagnosis& diagnosis);

/// Every way to write the user's home folder: as given, and with links resolved.
[[nodiscard]] std::vector<std::string> spellingsOf(const std::string& home);

}  // namespace vantora
