// SPDX-License-Identifier: MIT
#include "status/status_renderer.hpp"

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "status/line_style.hpp"
#include "status/status_modules.hpp"

namespace vantora::StatusRenderer {
namespace {

/// Height that is always left to the two rows together.
constexpr double minRowsHeight = 18;
constexpr double minImageHeight = 20;
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
      : height(std::max(minImageHeight, thickness - 2)) {
    const double paddingLimit = std::max((height - minRowsHeight) * 0.5, 0.0);
    padding = std::min(configuration.verticalPadding, paddingLimit);
    const double inner = height - 2 * padding;
    const double lineGapLimit = std::max(inner - minRowsHeight, 0.0);
    lineGap = std::min(configuration.lineGap, lineGapLimit);
    rowHeight = (inner - lineGap) * 0.5;
    isReduced =
        configuration.verticalPadding > paddingLimit || configuration.lineGap > lineGapLimit;
  }
};

/// How wide a line of a module is, and how wide the widest text that it can show.
struct LineWidths {
  double shown;
  double reserved;
};

double columnWidth(const ModuleConfiguration& module, const LineWidths& top,
                   const LineWidths& bottom) {
  if (module.widthMode == WidthMode::automatic) {
    return std::clamp(std::max(top.shown, bottom.shown) + columnMargin, automaticWidth.least,
                      automaticWidth.most);
  }
  // The column never changes its width while the values change.
  return std::max(module.width, std::max(top.reserved, bottom.reserved) + columnMargin);
}

/// The share of a column's free width that is to the left of a text.
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

/// Lays out modules one after the other, into the memory of the picture before.
class ModuleLayout {
 public:
  ModuleLayout(const VerticalBudget& budget, const MetricSnapshot& snapshot, TextEngine& engine,
               StatusPresentation& presentation)
      : budget_(budget), snapshot_(snapshot), engine_(engine), texts_(presentation.image.texts) {
    std::size_t count = 0;
    for (const StatusModule& module : presentation.modules) {
      count += (module.top.text.empty() ? 0U : 1U) + (module.bottom.text.empty() ? 0U : 1U);
    }
    texts_.resize(count);
  }

  /// Gives the module its fonts, its place and its width, and its lines their places.
  void add(const ModuleConfiguration& module, double x, StatusModule& shown) {
    const std::size_t first = used_;
    const LineWidths top = measure(shown.top, module.fontTop);
    const LineWidths bottom = measure(shown.bottom, module.fontBottom);
    shown.x = x;
    shown.width = columnWidth(module, top, bottom);
    used_ = first;
    const double share = leadingShare(module.alignment);
    place(shown.top, x + (shown.width - top.shown) * share,
          budget_.padding + budget_.rowHeight + budget_.lineGap);
    place(shown.bottom, x + (shown.width - bottom.shown) * share, budget_.padding);
  }

 private:
  /// Sets the line's text in its font, at the next place of the picture.
  LineWidths measure(StatusLine& line, double fontSize) {
    line.font = LineStyle::font(fontSize, budget_.rowHeight, line.metric);
    LineStyle::style(LineStyle::reserved(line.metric, snapshot_), line.font, line.metric,
                     reserved_);
    LineWidths widths{0, engine_.width(reserved_)};
    if (line.text.empty()) {
      return widths;
    }
    StyledText& text = texts_[used_++].text;
    LineStyle::style(line.text, line.font, line.metric, text);
    widths.shown = engine_.width(text);
    return widths;
  }

  /// Puts the line into the rectangle of its row. A text hangs from its rectangle's top.
  void place(const StatusLine& line, double x, double rowBottom) {
    if (line.text.empty()) {
      return;
    }
    const double bottom = rowBottom + (budget_.rowHeight - line.font.pointSize) * 0.5 - 1;
    PlacedText& placed = texts_[used_++];
    placed.x = x;
    placed.y = bottom + budget_.rowHeight - engine_.metrics(line.font).ascent;
  }

  const VerticalBudget& budget_;
  const MetricSnapshot& snapshot_;
  TextEngine& engine_;
  std::vector<PlacedText>& texts_;
  std::size_t used_ = 0;
  StyledText reserved_;
};

void layOutModules(const AppConfiguration& configuration, const MetricSnapshot& snapshot,
                   const VerticalBudget& budget, TextEngine& engine,
                   StatusPresentation& presentation) {
  ModuleLayout layout(budget, snapshot, engine, presentation);
  double x = configuration.horizontalPadding;
  for (StatusModule& shown : presentation.modules) {
    const ModuleConfiguration& module = configuration.modules[shown.index];
    layout.add(module, x, shown);
    x += shown.width;
    if (&shown != &presentation.modules.back()) {
      x += module.gapAfter.value_or(configuration.gap);
    }
  }
  presentation.image.width = x + configuration.horizontalPadding;
  presentation.image.height = budget.height;
}

bool shows(const std::vector<StatusModule>& modules, MetricFamily wanted) {
  return std::any_of(modules.begin(), modules.end(), [wanted](const StatusModule& module) {
    return family(module.top.metric) == wanted || family(module.bottom.metric) == wanted;
  });
}

/// The description in two forms: spoken in sentences, read in lines.
class Description {
 public:
  explicit Description(StatusPresentation& presentation)
      : sentences_(presentation.accessibilityText), lines_(presentation.toolTip) {
    sentences_.clear();
    lines_.clear();
  }

  void add(const StatusModule& module) {
    begin();
    add(module.top);
    append("; ");
    add(module.bottom);
  }

  void add(std::string_view message) {
    begin();
    append(message);
  }

  /// In the lines alone.
  void addLine(std::string_view line) {
    lines_ += lines_.empty() ? "" : "\n";
    lines_ += line;
  }

 private:
  void begin() {
    if (!sentences_.empty()) {
      sentences_ += ". ";
      lines_ += '\n';
    }
  }

  void add(const StatusLine& line) {
    append(title(line.metric));
    append(": ");
    append(line.text);
  }

  void append(std::string_view text) {
    sentences_ += text;
    lines_ += text;
  }

  std::string& sentences_;
  std::string& lines_;
};

void describe(const AppConfiguration& configuration, const MetricSnapshot& snapshot,
              StatusPresentation& presentation) {
  Description description(presentation);
  for (const StatusModule& module : presentation.modules) {
    description.add(module);
  }
  if (shows(presentation.modules, MetricFamily::codex)) {
    description.add(snapshot.codex.message);
  }
  if (shows(presentation.modules, MetricFamily::claude)) {
    description.add(snapshot.claude.message);
  }
  if (configuration.paused) {
    description.addLine("Coleta pausada");
  }
}

bool hasReducedFont(const AppConfiguration& configuration, const std::vector<StatusModule>& modules,
                    double rowHeight) {
  const double limit = LineStyle::maxFontSize(rowHeight);
  return std::any_of(modules.begin(), modules.end(), [&](const StatusModule& shown) {
    const ModuleConfiguration& module = configuration.modules[shown.index];
    return module.fontTop > limit || module.fontBottom > limit;
  });
}

void layOutMark(double height, TextEngine& engine, StatusPresentation& presentation) {
  constexpr double width = 20;
  constexpr double lineHeight = 11;
  const Font font{Typeface::system, 9};
  presentation.image.width = width;
  presentation.image.height = height;
  presentation.image.texts.clear();
  presentation.image.texts.push_back({2,
                                      (height - lineHeight) * 0.5 + engine.metrics(font).descent,
                                      {{StatusPresentation::emptyMark, font}}});
  Description(presentation).add("Vantora: sem módulos ativos. Clique para configurar.");
}

}  // namespace

void layOut(const AppConfiguration& configuration, const MetricSnapshot& snapshot,
            const Context& context, StatusPresentation& presentation) {
  const VerticalBudget budget(configuration, context.thickness);
  bool isReduced = false;
  if (presentation.modules.empty()) {
    layOutMark(budget.height, context.engine, presentation);
  } else {
    layOutModules(configuration, snapshot, budget, context.engine, presentation);
    describe(configuration, snapshot, presentation);
    isReduced =
        budget.isReduced || hasReducedFont(configuration, presentation.modules, budget.rowHeight);
  }
  if (!isReduced) {
    presentation.warning.reset();
  } else if (!presentation.warning) {
    presentation.warning =
        "Fonte, margem ou intervalo reduzido para caber nas duas linhas desta barra.";
  }
  presentation.width = presentation.image.width;
}

StatusPresentation render(const AppConfiguration& configuration, const MetricSnapshot& snapshot,
                          const Context& context) {
  StatusPresentation presentation;
  StatusModules::read(configuration, snapshot, context.now, presentation.modules);
  layOut(configuration, snapshot, context, presentation);
  return presentation;
}

}  // namespace vantora::StatusRenderer
