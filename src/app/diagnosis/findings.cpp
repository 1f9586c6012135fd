// SPDX-License-Identifier: MIT
#include "app/diagnosis/findings.hpp"

#include <sys/stat.h>

#include <algorithm>
#include <utility>

#include "model/configuration_codec.hpp"
#include "settings/configuration_store.hpp"
#include "settings/file_io.hpp"
#include "status/metric_formatter.hpp"

namespace vantora {
namespace {

bool isReadHere(MetricID metric) {
  const auto producer = family(metric);
  return producer && producer != MetricFamily::codex && producer != MetricFamily::claude;
}

bool canBeInForce(const std::string& document) {
  const auto decoded = ConfigurationCodec::decode(document);
  return decoded && decoded->validated();
}

}  // namespace

FileReport configurationFile(const std::filesystem::path& path) {
  FileReport report{path.string(), FileReport::State::absent, std::nullopt};
  struct stat status {};
  if (::stat(path.c_str(), &status) == 0) {
    report.changed = std::chrono::system_clock::from_time_t(status.st_mtime);
  }
  const auto document = FileIO::readFile(path, ConfigurationStore::loadLimit);
  if (document) {
    report.state = canBeInForce(*document) ? FileReport::State::good : FileReport::State::invalid;
  } else if (document.fault().kind != Fault::Kind::absent) {
    report.state = FileReport::State::unreadable;
  }
  return report;
}

std::string loginItemText(LoginItemStatus status) {
  switch (status) {
    case LoginItemStatus::notRegistered:
      return "o Vantora não inicia com a sessão";
    case LoginItemStatus::enabled:
      return "o Vantora inicia com a sessão";
    case LoginItemStatus::requiresApproval:
      return "o início com a sessão aguarda aprovação nas configurações do sistema";
    case LoginItemStatus::notFound:
      return "o início com a sessão está ligado, mas o programa que ele inicia não existe";
  }
  return {};
}

std::vector<ReadingReport> readingsOf(const MetricSnapshot& own,
                                      const std::optional<AgentReport>& agent, WallTime now) {
  std::vector<ReadingReport> readings;
  for (const MetricID metric : allMetrics) {
    if (!isReadHere(metric)) {
      continue;
    }
    if (agent) {
      const auto known =
          std::find_if(agent->readings.begin(), agent->readings.end(),
                       [metric](const ReadingReport& each) { return each.metric == metric; });
      if (known != agent->readings.end()) {
        readings.push_back(*known);
        continue;
      }
    }
    const MetricSample& sample = own[metric];
    readings.push_back(
        {metric, sample.quality, MetricFormatter::text(metric, own, now), sample.source});
  }
  return readings;
}

void addQuotas(const AppConfiguration& configuration, const std::optional<AgentReport>& agent,
               AssistantReport& codex, AssistantReport& claude) {
  codex.isWanted = configuration.codexSettings && configuration.codexSettings->enabled;
  claude.isWanted = configuration.claudeSettings && configuration.claudeSettings->enabled;
  codex.isShown = !metricsOfFamily(configuration.demand(), MetricFamily::codex).empty();
  claude.isShown = !metricsOfFamily(configuration.demand(), MetricFamily::claude).empty();
  if (agent) {
    codex.quota = agent->codex;
    claude.quota = agent->claude;
  }
}

void takeAgentAnswer(std::string_view answer, Diagnosis& diagnosis) {
  diagnosis.report = parseAgentReport(answer);
  diagnosis.agent = diagnosis.report ? AgentPresence::answered : AgentPresence::garbled;
  if (diagnosis.report) {
    diagnosis.item = diagnosis.report->item;
  }
}

std::vector<std::string> spellingsOf(const std::string& home) {
  std::vector<std::string> spellings{home};
  std::error_code error;
  const auto resolved = std::filesystem::canonical(home, error);
  if (!error && resolved != home) {
    spellings.push_back(resolved.string());
  }
  return spellings;
}

}  // namespace vantora
