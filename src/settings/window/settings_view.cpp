// SPDX-License-Identifier: MIT
#include "settings/window/settings_view.hpp"

#include <QGuiApplication>
#include <QScreen>
#include <QShortcut>
#include <QVBoxLayout>

#include "settings/window/tabs/appearance_tab.hpp"
#include "settings/window/tabs/claude_tab.hpp"
#include "settings/window/tabs/codex_tab.hpp"
#include "settings/window/tabs/general_tab.hpp"
#include "settings/window/tabs/modules_tab.hpp"
#include "settings/window/tabs/sampling_tab.hpp"

namespace vantora {
namespace {

constexpr const char* activationVariable = "XDG_ACTIVATION_TOKEN";

// Around everything, in points: less than the style's, so that the window fits into 300 x 200.
constexpr int margin = 6;
// What a window's frame may take of the screen, in points.
constexpr QSize frameAllowance{8, 40};

// No larger than what the screen's panels leave of it.
QSize firstSize() {
  const QSize wanted(640, 520);
  const QScreen* screen = QGuiApplication::primaryScreen();
  return screen == nullptr ? wanted : wanted.boundedTo(screen->availableSize() - frameAllowance);
}

// The tabs of the quota integrations, in the order of the tabs.
constexpr int codexTab = 3;
constexpr int claudeTab = 4;

}  // namespace

SettingsView::SettingsView(WindowModel& model)
    : model_(model), tabs_(new QTabWidget), footer_(new Footer(model)) {
  setWindowTitle(qtText("Configurações do Vantora"));
  resize(firstSize());
  auto* content = new QWidget;
  setCentralWidget(content);
  auto* column = new QVBoxLayout(content);
  column->setContentsMargins(margin, margin, margin, margin);
  column->addWidget(tabs_, 1);
  column->addWidget(footer_);
  noticeTimer_.setObjectName(QStringLiteral("noticeTimer"));
  noticeTimer_.setSingleShot(true);
  noticeTimer_.setInterval(minNoticeDuration);
  QObject::connect(&noticeTimer_, &QTimer::timeout, this, [this] { model_.releaseNotice(); });

  auto* modules = new ModulesTab(model);
  modules->onQuotaTab = [this](MetricFamily wanted) {
    tabs_->setCurrentIndex(wanted == MetricFamily::codex ? codexTab : claudeTab);
  };
  addTab(modules, "&Módulos");
  addTab(new AppearanceTab(model), "A&parência");
  addTab(new SamplingTab(model), "Cole&ta");
  addTab(new CodexTab(model), "Code&x semanal");
  addTab(new ClaudeTab(model), "Cla&ude");
  addTab(new GeneralTab(model), "&Geral");

  model_.onChange = [this](WindowFields fields) { refresh(fields); };
  model_.onRaise = [this](const std::string& token) { raiseWith(token); };
  QObject::connect(tabs_, &QTabWidget::currentChanged, this, [this] {
    showNotice();
    if (onPlaceChange) {
      onPlaceChange();
    }
  });
  new QShortcut(QKeySequence::Close, this, [this] { close(); });
  if (model_.hasState()) {
    refresh(allWindowFields);
  }
}

// A field that has the focus while the window ends takes its text over, when nothing is left to
// show it.
SettingsView::~SettingsView() {
  model_.onChange = nullptr;
  model_.onRaise = nullptr;
}

void SettingsView::addTab(SettingsTab* tab, const char* title) {
  pages_.push_back(tab);
  tabs_->addTab(tab, qtText(title));
}

void SettingsView::refresh(WindowFields fields) {
  for (SettingsTab* page : pages_) {
    page->refresh(fields);
  }
  if (fields.contains(WindowField::notice)) {
    if (model_.state().notice) {
      noticeTimer_.start();
    }
    showNotice();
  }
  if (fields.contains(WindowField::configuration)) {
    footer_->showPaused(model_.state().configuration.paused);
  }
  if (fields.contains(WindowField::undoable)) {
    footer_->refreshUndo();
  }
}

// The last tab shows the notice among its own controls.
void SettingsView::showNotice() {
  footer_->showNotice(tabs_->currentWidget() != pages_.back() ? model_.notice() : std::nullopt);
}

void SettingsView::closeEvent(QCloseEvent* event) {
  if (onPlaceChange) {
    onPlaceChange();
  }
  QMainWindow::closeEvent(event);
}

void SettingsView::paintEvent(QPaintEvent* event) {
  // The window may have come to a screen of another scale, or the screen's have changed.
  model_.setScale(devicePixelRatioF());
  QMainWindow::paintEvent(event);
}

void SettingsView::resizeEvent(QResizeEvent* event) {
  QMainWindow::resizeEvent(event);
  footer_->updateGeometry();  // Its height depends on the window's.
}

void SettingsView::raiseWith(const std::string& activationToken) {
  // Where Qt's Wayland platform looks for the token when it asks for the activation: as the
  // window is first shown, and at once in activateWindow().
  if (!activationToken.empty()) {
    qputenv(activationVariable, QByteArray::fromStdString(activationToken));
  }
  if (!model_.hasState()) {
    return;  // It is about to be shown, with its content.
  }
  if (isMinimized()) {
    showNormal();
  }
  show();
  raise();
  activateWindow();
  // Another platform leaves it there; it is good for this one time.
  qunsetenv(activationVariable);
}

}  // namespace vantora
