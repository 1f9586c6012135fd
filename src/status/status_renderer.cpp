// SPDX-License-Identifier: MIT
#include "status/status_renderer.hpp"

#include <algorithm>
#include <utility>
#include <vector>

#include "status/line_style.hpp"
#include "status/metric_formatter.hpp"

namespace vantora::StatusRenderer {
namespace {

/// Height that is always left to the two rows together.
constexpr double leastRowsHeight = 18;
constexpr double leastImageHeight = 20;
constexpr double columnMargin = 2;
constexpr Limits automaticWidth{16, 160};

/// How the picture's height is shared out.
struct VerticalBudget {
  double height;
  double padding;
  double lineGap;
  double rowHeight;
  bool isReduced;  ///< The padding or the gap asked for did not fit.

  VerticalBudget(const AppConfiguration& configuration, double thickness)
      : height(std::max(leastImageHeight, thickness - 2)) {
    const double paddingLimit = std::max((height - leastRowsHeight) * 0.5, 0.0);
    padding = std::min(configuration.verticalPadding, paddingLimit);
    const double inner = height - 2 * padding;
    const double lineGapLimit = std::max(inner - leastRowsHeight, 0.0);
    lineGap = std::min(configuration.lineGap, lineGapLimit);
    rowHeight = (inner - lineGap) * 0.5;
    isReduced =
        configuration.verticalPadding > paddingLimit || configuration.lineGap > lineGapLimit;
  }
};

/// One line of a visible module.
struct Line {
  MetricID metric;
  std::string text;
  Font font;
  StyledText styled;
  double width = 0;
  double reservedWidth = 0;
};

/// A visible module with what it shows.
struct Entry {
  const ModuleConfiguration* module;
  Line top;
  Line bottom;
  double width = 0;
};

Line makeLine(MetricID metric, double fontSize, const VerticalBudget& budget,
              const MetricSnapshot& snapshot, const Context& context) {
  Line line{metric,
            MetricFormatter::text(metric, snapshot, context.now),
            LineStyle::font(fontSize, budget.rowHeight, metric),
            {}};
  line.styled = LineStyle::styled(line.text, line.font, metric);
  line.width = context.engine.width(line.styled);
  line.reservedWidth = context.engine.width(
      LineStyle::styled(LineStyle::reserved(metric, snapshot), line.font, metric));
  return line;
}

Entry makeEntry(const ModuleConfiguration& module, const VerticalBudget& budget,
                const MetricSnapshot& snapshot, const Context& context) {
  Entry entry{&module, makeLine(module.top, module.fontTop, budget, snapshot, context),
              makeLine(module.bottom, module.fontBottom, budget, snapshot, context)};
  if (module.widthMode == WidthMode::automatic) {
    entry.width = std::clamp(std::max(entry.top.width, entry.bottom.width) + columnMargin,
                             automaticWidth.least, automaticWidth.most);
  } else {
    // The column never changes its width while the values change.
    entry.width = std::max(
        module.width, std::max(entry.top.reservedWidth, entry.bottom.reservedWidth) + columnMargin);
  }
  return entry;
}

/// How much of the free width of its column stands to the left of a text.
double leadingShare(Alignment alignment) {
  switch (alignment) {
    case Alignment::left:
      return 0;
    case Alignment::right:
      return 1;
    case Alignment::center:
      break;
  }
  return 0.5;
}

/// Sets the line into the rectangle of its row. A text hangs from its rectangle's top.
void place(const Line& line, const Entry& entry, double x, double rowBottom,
           const VerticalBudget& budget, TextEngine& engine, StatusImage& image) {
  if (line.styled.empty()) {
    return;
  }
  const double bottom = rowBottom + (budget.rowHeight - line.font.pointSize) * 0.5 - 1;
  const double baseline = bottom + budget.rowHeight - engine.metrics(line.font).ascent;
  const double free = entry.width - line.width;
  image.texts.push_back({x + free * leadingShare(entry.module->alignment), baseline, line.styled});
}

StatusImage draw(const std::vector<Entry>& entries, const AppConfiguration& configuration,
                 const VerticalBudget& budget, TextEngine& engine) {
  StatusImage image;
  image.height = budget.height;
  image.texts.reserve(entries.size() * 2);
  double x = configuration.horizontalPadding;
  for (const Entry& entry : entries) {
    place(entry.top, entry, x, budget.padding + budget.rowHeight + budget.lineGap, budget, engine,
          image);
    place(entry.bottom, entry, x, budget.padding, budget, engine, image);
    x += entry.width;
    if (&entry != &entries.back()) {
      x += entry.module->gapAfter.value_or(configuration.gap);
    }
  }
  image.width = x + configuration.horizontalPadding;
  return image;
}

bool shows(const std::vector<Entry>& entries, MetricFamily wanted) {
  return std::any_of(entries.begin(), entries.end(), [wanted](const Entry& entry) {
    return family(entry.top.metric) == wanted || family(entry.bottom.metric) == wanted;
  });
}

void describe(const Line& line, std::string& text) {
  text += title(line.metric);
  text += ": ";
  text += line.text;
}

std::string accessibilityText(const std::vector<Entry>& entries, const MetricSnapshot& snapshot) {
  constexpr std::string_view separator = ". ";
  std::string text;
  for (const Entry& entry : entries) {
    if (!text.empty()) {
      text += separator;
    }
    describe(entry.top, text);
    text += "; ";
    describe(entry.bottom, text);
  }
  if (shows(entries, MetricFamily::codex)) {
    text.append(separator).append(snapshot.codex.message);
  }
  if (shows(entries, MetricFamily::claude)) {
    text.append(separator).append(snapshot.claude.message);
  }
  return text;
}

bool hasReducedFont(const std::vector<Entry>& entries, double rowHeight) {
  const double limit = LineStyle::largestFont(rowHeight);
  return std::any_of(entries.begin(), entries.end(), [limit](const Entry& entry) {
    return entry.module->fontTop > limit || entry.module->fontBottom > limit;
  });
}

StatusPresentation renderFallback(double height, TextEngine& engine) {
  constexpr double width = 20;
  constexpr double lineHeight = 11;
  const Font font{FontFace::system, 9};
  StatusPresentation presentation;
  presentation.image.width = width;
  presentation.image.height = height;
  presentation.image.texts.push_back(
      {2, (height - lineHeight) * 0.5 + engine.metrics(font).descent, {{"VA", font}}});
  presentation.width = width;
  presentation.accessibilityText = "Vantora: sem módulos ativos. Clique para configurar.";
  return presentation;
}

}  // namespace

StatusPresentation render(const AppConfiguration& configuration, const MetricSnapshot& snapshot,
                          const Context& context) {
  const VerticalBudget budget(configuration, context.thickness);
  std::vector<Entry> entries;
  entries.reserve(configuration.modules.size());
  for (const ModuleConfiguration& module : configuration.modules) {
    if (module.isVisible(snapshot)) {
      entries.push_back(makeEntry(module, budget, snapshot, context));
    }
  }
  if (entries.empty()) {
    return renderFallback(budget.height, context.engine);
  }
  StatusPresentation presentation;
  presentation.image = draw(entries, configuration, budget, context.engine);
  presentation.width = presentation.image.width;
  presentation.accessibilityText = accessibilityText(entries, snapshot);
  if (budget.isReduced || hasReducedFont(entries, budget.rowHeight)) {
    presentation.warning =
        "Fonte, margem ou intervalo reduzido para caber nas duas linhas desta barra.";
  }
  return presentation;
}

std::string signature(const AppConfiguration& configuration, const MetricSnapshot& snapshot,
                      WallTime now) {
  // A UUID, three separators and two texts; longer texts still fit, at one more allocation.
  constexpr std::size_t usualLength = 64;
  std::string parts;
  parts.reserve(configuration.modules.size() * usualLength);
  for (const ModuleConfiguration& module : configuration.modules) {
    if (!module.isVisible(snapshot)) {
      continue;
    }
    if (!parts.empty()) {
      parts += ';';
    }
    module.id.appendTo(parts);
    parts += ':';
    parts += MetricFormatter::text(module.top, snapshot, now);
    parts += '|';
    parts += MetricFormatter::text(module.bottom, snapshot, now);
  }
  return parts;
}

}  // namespace vantora::StatusRenderer
