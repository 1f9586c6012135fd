// SPDX-License-Identifier: MIT
#include "settings/window/settings_view.hpp"

#include <QShortcut>
#include <QVBoxLayout>

#include "settings/window/appearance_tab.hpp"
#include "settings/window/claude_tab.hpp"
#include "settings/window/codex_tab.hpp"
#include "settings/window/general_tab.hpp"
#include "settings/window/modules_tab.hpp"
#include "settings/window/sampling_tab.hpp"

namespace vantora {
namespace {

constexpr const char* activationVariable = "XDG_ACTIVATION_TOKEN";

}  // namespace

SettingsView::SettingsView(WindowModel& model)
    : model_(model), tabs_(new QTabWidget), notice_(Controls::makeText()) {
  setWindowTitle(qtText("Configurações do Vantora"));
  resize(640, 520);
  auto* content = new QWidget;
  setCentralWidget(content);
  auto* column = new QVBoxLayout(content);
  column->addWidget(tabs_, 1);
  notice_->setObjectName(QStringLiteral("footerNotice"));
  column->addWidget(notice_);

  addTab(new ModulesTab(model), "&Módulos");
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

void SettingsView::addTab(SettingsTab* tab, const char* title) {
  pages_.push_back(tab);
  tabs_->addTab(tab, qtText(title));
}

void SettingsView::refresh(WindowFields fields) {
  for (SettingsTab* page : pages_) {
    page->refresh(fields);
  }
  if (fields.contains(WindowField::notice)) {
    showNotice();
  }
}

// The last tab shows the notice among its own controls.
void SettingsView::showNotice() {
  const auto& notice = model_.notice();
  notice_->setText(qtText(notice.value_or(std::string())));
  notice_->setVisible(notice.has_value() && tabs_->currentWidget() != pages_.back());
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
