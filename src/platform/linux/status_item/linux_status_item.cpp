// SPDX-License-Identifier: MIT
#include "platform/linux/status_item/linux_status_item.hpp"

#include <utility>

namespace vantora {
namespace {

// Panels are 24 points high by default; the picture takes 22 of them.
constexpr double barThickness = 24;
// The picture's height in points.
constexpr int pictureHeight = 22;
// How long after its watcher a panel's tray may come.
constexpr Seconds trayTimeout{2};

/// Whether the panel is known to draw the picture no larger than it is offered at its own scale.
bool drawsAsOffered(const PanelLayout& layout) {
  return layout.iconHeight.value_or(pictureHeight + 1) <= pictureHeight;
}

}  // namespace

LinuxStatusItem::LinuxStatusItem(BusConnection& connection, TaskQueue& queue, TextEngine& engine,
                                 Options options,
                                 std::function<void(StatusItemSituation)> onSituation)
    : connection_(connection),
      queue_(queue),
      engine_(engine),
      options_(std::move(options)),
      onSituation_(std::move(onSituation)),
      actions_(queue),
      pictures_(*watcherState_.panel, engine),
      item_(connection, *this, *this),
      portal_(connection, [this](ColorScheme scheme) { colorSchemeChanged(scheme); }),
      watcher_(connection, queue, {options_.processRoot, options_.fileWorker},
               [this](const StatusNotifierWatcher::State& state) { watcherChanged(state); }) {}

LinuxStatusItem::~LinuxStatusItem() {
  if (trayPointer_ != nullptr) {
    trayPointer_->close();
  }
  modules_.reset();
  tray_.reset();
}

double LinuxStatusItem::thickness() const {
  return barThickness;
}

void LinuxStatusItem::show(const StatusPresentation& presentation) {
  if (menu_ != nullptr) {
    menu_->refresh();
  }
  const ItemPictures::News news = pictures_.show(presentation);
  if (news.image && tray_ != nullptr) {
    tray_->update(pictures_.length());
  }
  if (modules_ != nullptr) {
    modules_->show(pictures_.presentation());
    return;
  }
  if (!isRegistered()) {
    return;  // a panel that appears asks for everything
  }
  if (news.icon) {
    item_.announceIcon();
  }
  if (news.label) {
    item_.announceLabel(pictures_.label());
  }
  if (news.toolTip && panel().hasToolTip) {
    item_.announceToolTip();
  }
}

void LinuxStatusItem::setActions(StatusItemActions actions) {
  actions_.set(std::move(actions));
  menu_ = std::make_unique<DBusMenu>(
      connection_, [this] { return actions_.isPaused(); },
      [this](StatusMenuCommand command) { actions_.run(command); });
  item_.setMenu(DBusMenu::path);
}

void LinuxStatusItem::activated(std::string token) {
  actions_.openSettings(std::move(token));
}

void LinuxStatusItem::colorSchemeChanged(ColorScheme scheme) {
  const Ink before = ink();
  colorScheme_ = scheme;
  if (ink() == before) {
    return;
  }
  if (modules_ != nullptr) {
    modules_->announceIcons();
  } else if (isRegistered()) {
    item_.announceIcon();
  }
}

void LinuxStatusItem::watcherChanged(const StatusNotifierWatcher::State& state) {
  const bool isNewPanel = state.panel != watcherState_.panel;
  const bool isNewBus = state.hasBus && !watcherState_.hasBus;
  const bool isNewLayout = state.layout != watcherState_.layout;
  watcherState_ = state;
  if (isNewPanel) {
    pictures_.setPanel(panel());
    item_.setHasLabel(panel().form == PictureForm::label);
  }
  if (isNewLayout) {
    layoutChanged();
  }
  if (!state.isPresent) {
    isTrayTooNarrow_ = false;
    isTrayOverdue_ = false;
    trayWait_.reset();
  } else if (state.panel->keepsTrayWindowWide) {
    startTray();
    if (!awaitsTray()) {
      trayWait_.reset();
    } else if (trayWait_ == nullptr) {
      trayWait_ = queue_.runAfter(trayTimeout, trayTimeout / 4, [this] { trayIsOverdue(); });
    }
  }
  if (state.hasHost && state.panel->keepsTrayWindowWide && tray_ != nullptr &&
      tray_->state() == XEmbedWindow::State::squeezed) {
    isTrayTooNarrow_ = true;  // the panel does better with the item on the bus
  }
  // A watcher without a host shows nothing: a tray that does is kept.
  if (state.hasHost && (!state.panel->keepsTrayWindowWide || isTrayTooNarrow_)) {
    if (state.panel->hasTrayToAsk) {
      watchTray();
    } else {
      stopTray();
    }
  }
  putUpModules();
  watcher_.setRegistering(!state.isPresent || !(isInTray() || awaitsTray() || modules_ != nullptr));
  explain();

  if (state.hasHost || isInTray()) {
    hostTimeout_.reset();
    hasHostTimedOut_ = false;
    reportStatus(StatusItemSituation::shown);
    return;
  }
  if (!state.hasBus) {
    reportStatus(StatusItemSituation::noBus);
  }
  if (isNewBus) {
    hostTimeout_.reset();  // a panel may be on its way as well
    hasHostTimedOut_ = false;
  }
  if (hasHostTimedOut_) {
    hostTimedOut();
  } else if (hostTimeout_ == nullptr) {
    hostTimeout_ =
        queue_.runAfter(options_.hostTimeout, options_.hostTimeout / 4, [this] { hostTimedOut(); });
  }
}

// Anew with each watcher: an item that registered with the one before is gone.
void LinuxStatusItem::putUpModules() {
  if (!watcherState_.isPresent || panel().itemOrder == ItemOrder::single) {
    modules_.reset();
  } else if (modules_ == nullptr) {
    modules_ = std::make_unique<ModuleItems>(ModuleItems::Parts{
        .connection = connection_,
        .queue = queue_,
        .engine = engine_,
        .panel = panel(),
        .events = *this,
        .ink = [this] { return ink(); },
        .isPaused = [this] { return actions_.isPaused(); },
        .onCommand = [this](StatusMenuCommand command) { actions_.run(command); }});
    modules_->show(pictures_.presentation());
  }
}

// No panel has taken the item on the bus: a tray may take its window.
void LinuxStatusItem::hostTimedOut() {
  hostTimeout_.reset();
  hasHostTimedOut_ = true;
  startTray();
  const bool isTrayStarting = tray_ != nullptr && tray_->state() == XEmbedWindow::State::starting;
  if (!isInTray() && !isTrayStarting && watcherState_.hasBus) {
    reportStatus(StatusItemSituation::noHost);
  }
}

void LinuxStatusItem::useTray(DisplayThread& thread, std::string display, TrayPopups popups) {
  trayPointer_ = std::make_unique<TrayPointer>(
      queue_, popups, actions_,
      TrayPointer::Item{.toolTip = [this] { return pictures_.presentation().toolTip; },
                        .isDark = [this] { return colorScheme_ == ColorScheme::dark; }});
  tray_ = std::make_unique<XEmbedWindow>(
      thread, queue_, std::move(display),
      XEmbedWindow::Callbacks{
          .onState = [this](XEmbedWindow::State state) { trayChanged(state); },
          .picture = [this](int width, int height,
                            int scale) { return pictures_.trayPicture(width, height, scale); },
          .onClick = [this](const XEmbedWindow::Click& click) { trayPointer_->clicked(click); },
          .onEnter = [this](const ScreenPoint& pointer) { trayPointer_->entered(pointer); },
          .onLeave = [this] { trayPointer_->left(); },
          .onOrientation = [this](bool isVertical) { orientationChanged(isVertical); }});
}

void LinuxStatusItem::startTray() {
  if (tray_ != nullptr && !isTrayTooNarrow_) {
    tray_->start(pictures_.length());
  }
}

// A panel that starts brings its watcher before its tray: an item that registered in
// between would only come and go.
bool LinuxStatusItem::awaitsTray() const {
  return tray_ != nullptr && panel().keepsTrayWindowWide && !isInTray() && !isTrayTooNarrow_ &&
         !isTrayOverdue_;
}

void LinuxStatusItem::trayIsOverdue() {
  trayWait_.reset();
  isTrayOverdue_ = true;
  watcherChanged(watcherState_);
}

bool LinuxStatusItem::isInTray() const {
  return tray_ != nullptr && tray_->state() != XEmbedWindow::State::absent &&
         tray_->state() != XEmbedWindow::State::starting;
}

bool LinuxStatusItem::isRegistered() const {
  return watcherState_.isPresent && !isInTray() && modules_ == nullptr;
}

void LinuxStatusItem::trayChanged(XEmbedWindow::State state) {
  if (state == XEmbedWindow::State::absent) {
    trayPointer_->left();
  }
  watcherChanged(watcherState_);
}

void LinuxStatusItem::stopTray() {
  if (tray_ != nullptr) {
    tray_->stop();
    trayPointer_->left();
  }
}

void LinuxStatusItem::watchTray() {
  if (tray_ != nullptr) {
    tray_->watch();
    trayPointer_->left();
  }
}

void LinuxStatusItem::layoutChanged() {
  const PanelLayout layout = watcherState_.layout.value_or(PanelLayout());
  orientationChanged(layout.isVertical);
  if (drawsAsOffered(layout) && panel().drawsLargest && options_.onScaleWanted != nullptr) {
    options_.onScaleWanted();
  }
  chooseScale();
}

void LinuxStatusItem::setScreenScale(std::optional<int> scale) {
  screenScale_ = scale;
  chooseScale();
}

// A panel that enlarges the picture, or may do so, does better with the larger one.
void LinuxStatusItem::chooseScale() {
  const bool isSmallEnough =
      screenScale_ == 1 && drawsAsOffered(watcherState_.layout.value_or(PanelLayout()));
  if (pictures_.setOnlyScale(isSmallEnough ? 1 : 2) && isRegistered()) {
    item_.announceIcon();
  }
}

void LinuxStatusItem::orientationChanged(bool isVertical) {
  if (!pictures_.setVertical(isVertical)) {
    return;
  }
  explain();
  if (isRegistered()) {
    item_.announceIcon();
  }
}

StatusItemReport LinuxStatusItem::report() const {
  return describe(facts());
}

StatusItemFacts LinuxStatusItem::facts() const {
  StatusItemFacts found{.watcher = watcherState_,
                        .colorScheme = colorScheme_,
                        .isVertical = pictures_.isVertical(),
                        .onlyScale = pictures_.onlyScale(),
                        .isTrayTooNarrow = isTrayTooNarrow_,
                        .isRowOfModules = modules_ != nullptr};
  if (tray_ != nullptr) {
    found.tray = tray_->state();
    found.trayScale = tray_->scale();
    found.trayInk = tray_->ink();
  }
  return found;
}

void LinuxStatusItem::setSquareModule(const std::optional<UUID>& module) {
  if (pictures_.setSquareModule(module) && isRegistered()) {
    item_.announceIcon();
  }
  if (isInTray()) {
    tray_->update(pictures_.length());
  }
}

void LinuxStatusItem::setSquareListener(std::function<void(bool)> onSquare) {
  onSquare_ = std::move(onSquare);
  onSquare_(keepsSquare_);
}

void LinuxStatusItem::reportSquare() {
  const bool keepsSquare = isInTray() ? tray_->state() == XEmbedWindow::State::squeezed
                                      : isRegistered() && watcherState_.hasHost &&
                                            pictures_.form() == PictureForm::square;
  if (std::exchange(keepsSquare_, keepsSquare) != keepsSquare && onSquare_ != nullptr) {
    onSquare_(keepsSquare);
  }
}

void LinuxStatusItem::explain() {
  reportSquare();
  std::string where = lineOf(facts());
  if (options_.onDecision != nullptr && where != explained_) {
    options_.onDecision(where);
    explained_ = std::move(where);
  }
}

void LinuxStatusItem::reportStatus(StatusItemSituation situation) {
  if (situation != reported_) {
    reported_ = situation;
    onSituation_(situation);
  }
}

std::size_t LinuxStatusItem::pictureCount() const {
  return pictures_.count();
}

StatusNotifierContent::Picture LinuxStatusItem::picture(std::size_t index) {
  return pictures_.picture(index);
}

Ink LinuxStatusItem::ink() const {
  return inkFor(panel(), colorScheme_);
}

std::string LinuxStatusItem::toolTip() const {
  return panel().hasToolTip ? toolTipFor(panel(), pictures_.presentation().toolTip) : std::string();
}

std::string LinuxStatusItem::accessibleDescription() const {
  return panel().repeatsDescription ? std::string() : pictures_.presentation().accessibilityText;
}

std::string LinuxStatusItem::label() const {
  return pictures_.label();
}

}  // namespace vantora
