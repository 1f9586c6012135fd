// SPDX-License-Identifier: MIT
#include "app/print/print_list.hpp"

#include <algorithm>

#include "app/cells.hpp"

namespace vantora::PrintFormatter {
namespace {

constexpr std::size_t separation = 2;
constexpr const char* ellipsis = "…";

struct Row {
  std::string title;
  std::string value;
  std::string reason;
};

// Names of links, chips and quotas are others' texts: none of them may steer the terminal.
std::string printable(std::string text) {
  for (char& byte : text) {
    if (static_cast<unsigned char>(byte) < ' ' || byte == '\x7f') {
      byte = '?';
    }
  }
  return text;
}

std::vector<Row> rows(const PrintReport& report) {
  std::vector<Row> result;
  MetricSet listed;
  for (const StatusModule& module : report.presentation.modules) {
    for (const StatusLine* line : {&module.top, &module.bottom}) {
      if (line->metric == MetricID::none || listed.contains(line->metric)) {
        continue;
      }
      listed.insert(line->metric);
      result.push_back({std::string(title(line->metric)), printable(line->text),
                        printable(reason(line->metric, report))});
    }
  }
  return result;
}

// The text in at most `most` cells, with an ellipsis where something is left out.
std::string shortened(const std::string& text, std::size_t most) {
  if (cellCount(text) <= most) {
    return text;
  }
  return most == 0 ? std::string() : cutToCells(text, most - 1) + ellipsis;
}

std::string padding(std::size_t width, const std::string& text) {
  return std::string(width - std::min(width, cellCount(text)), ' ');
}

std::size_t widest(const std::vector<Row>& rows, std::string Row::*column) {
  std::size_t width = 0;
  for (const Row& row : rows) {
    width = std::max(width, cellCount(row.*column));
  }
  return width;
}

std::size_t minus(std::size_t whole, std::size_t part) {
  return whole - std::min(whole, part);
}

}  // namespace

std::string reason(MetricID metric, const PrintReport& report) {
  const MetricSnapshot& snapshot = report.snapshot;
  const auto producer = family(metric);
  if (producer == MetricFamily::codex) {
    return snapshot.codex.status == CodexQuotaStatus::ready ? "" : snapshot.codex.message;
  }
  if (producer == MetricFamily::claude) {
    return snapshot.claude.status == ClaudeQuotaStatus::ready ? "" : snapshot.claude.message;
  }
  if (producer && report.configuration.paused) {
    return "Coleta pausada";
  }
  if (producer && snapshot.samples.find(metric) == nullptr) {
    return "Aguardando a primeira leitura";
  }
  const MetricSample& sample = snapshot[metric];
  return sample.quality == Quality::valid ? "" : sample.source;
}

std::vector<std::string> listLines(const PrintReport& report, std::size_t columns) {
  const std::vector<Row> all = rows(report);
  if (all.empty()) {
    return {cutToCells(StatusPresentation::emptyMark, columns)};
  }
  const std::size_t valueWidth = widest(all, &Row::value);
  const std::size_t titleWidth =
      std::min(widest(all, &Row::title), minus(columns, valueWidth + separation));
  const std::size_t reasonWidth = minus(columns, titleWidth + valueWidth + 2 * separation);
  const std::string gap(separation, ' ');
  std::vector<std::string> lines;
  for (const Row& row : all) {
    const std::string shortTitle = shortened(row.title, titleWidth);
    std::string line = shortTitle;
    for (const std::string& part :
         {padding(titleWidth, shortTitle), gap, padding(valueWidth, row.value), row.value}) {
      line += part;
    }
    if (const std::string shortReason = shortened(row.reason, reasonWidth); !shortReason.empty()) {
      line += gap + shortReason;
    }
    lines.push_back(cutToCells(std::move(line), columns));
  }
  return lines;
}

}  // namespace vantora::PrintFormatter
