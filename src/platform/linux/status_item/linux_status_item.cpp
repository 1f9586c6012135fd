// SPDX-License-Identifier: MIT
#include "platform/linux/status_item/linux_status_item.hpp"

#include <algorithm>
#include <array>
#include <utility>

#include "platform/linux/status_item/status_item_report.hpp"
#include "status/rasterise.hpp"

namespace vantora {
namespace {

// Panels are 24 points high by default; the picture takes 22 of them.
constexpr double barThickness = 24;
// The item is 6 points longer than the picture: 3 on either side.
constexpr double sideMargin = 3;
constexpr double plateRadius = 5;
// How long after its watcher a panel's tray may come.
constexpr Seconds trayTimeout{2};
// Pixels in a point. Both are always offered: the panel takes what suits the screen that it
// is on now, which may change while the item is shown.
constexpr std::size_t maxScale = 2;
constexpr std::array<int, 4> markSides{16, 22, 32, 48};

// A click on an X11 window gives no token. Window managers read the time of the click out
// of an id like this and let the window that carries it come to the front
// (freedesktop's "Startup Notification Protocol", "_TIME").
std::string startupId(std::uint32_t time) {
  return "vantora_TIME" + std::to_string(time);
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
      item_(connection, *this, *this),
      portal_(connection, [this](ColorScheme scheme) { colorSchemeChanged(scheme); }),
      watcher_(connection, queue, options_.processRoot,
               [this](const StatusNotifierWatcher::State& state) { watcherChanged(state); }) {}

LinuxStatusItem::~LinuxStatusItem() {
  if (popups_) {
    popups_->menu.close();
    popups_->toolTip.hide();
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
  const bool isNewImage = presentation.image != presentation_.image;
  const bool isNewText = presentation.toolTip != presentation_.toolTip;
  presentation_ = presentation;
  const PictureForm shownForm = form();
  bool isNewIcon = isNewImage && shownForm == PictureForm::wide;
  bool isNewLabel = false;
  if (isNewImage && shownForm != PictureForm::wide) {
    const SquareContent before = square_;
    const std::string label = label_;
    takeContent();
    isNewIcon = before != square_;
    isNewLabel = label != label_;
  }
  if (isNewImage && tray_ != nullptr) {
    tray_->update(presentation_.image.width + 2 * sideMargin);
  }
  if (modules_ != nullptr) {
    modules_->show(presentation_);
    return;
  }
  if (!isRegistered()) {
    return;  // a panel that appears asks for everything
  }
  if (isNewIcon) {
    item_.announceIcon();
  }
  if (isNewLabel) {
    item_.announceLabel(label_);
  }
  if (isNewText && panel().hasToolTip) {
    item_.announceToolTip();
  }
}

void LinuxStatusItem::setActions(StatusItemActions actions) {
  actions_ = std::make_shared<const StatusItemActions>(std::move(actions));
  menu_ = std::make_unique<DBusMenu>(
      connection_, [this] { return isPaused(); },
      [this](StatusMenuCommand command) { chosen(command); });
  item_.setMenu(DBusMenu::path);
}

// What the user asked for comes from the middle of a message on the bus, and may end the
// connection: it runs when the message is done with.
void LinuxStatusItem::activated(std::string token) {
  queue_.post([weak = std::weak_ptr(actions_), token = std::move(token)] {
    const auto actions = weak.lock();
    if (actions != nullptr && actions->openSettings != nullptr) {
      actions->openSettings(token);
    }
  });
}

void LinuxStatusItem::chosen(StatusMenuCommand command) {
  queue_.post([weak = std::weak_ptr(actions_), command] {
    const auto actions = weak.lock();
    if (actions == nullptr) {
      return;
    }
    switch (command) {
      case StatusMenuCommand::openSettings:
        return actions->openSettings != nullptr ? actions->openSettings({}) : void();
      case StatusMenuCommand::togglePause:
        return actions->togglePause != nullptr ? actions->togglePause() : void();
      case StatusMenuCommand::quit:
        return actions->quit != nullptr ? actions->quit() : void();
    }
  });
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

// Makes what the form needs, so that the next presentation can be compared with it.
void LinuxStatusItem::takeContent() {
  const PictureForm shownForm = form();
  square_ = shownForm == PictureForm::square ? squareContent(presentation_, squareModule_)
                                             : SquareContent{};
  label_ = shownForm == PictureForm::label ? labelText(presentation_) : std::string();
}

void LinuxStatusItem::watcherChanged(const StatusNotifierWatcher::State& state) {
  const bool isNewPanel = state.panel != watcherState_.panel;
  const bool isNewBus = state.hasBus && !watcherState_.hasBus;
  watcherState_ = state;
  if (isNewPanel) {
    isVertical_ = false;
    drawn_.clear();
    takeContent();
    item_.setHasLabel(panel().form == PictureForm::label);
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
    modules_ = std::make_unique<ModuleItems>(
        ModuleItems::Parts{.connection = connection_,
                           .queue = queue_,
                           .engine = engine_,
                           .panel = panel(),
                           .events = *this,
                           .ink = [this] { return ink(); },
                           .isPaused = [this] { return isPaused(); },
                           .onCommand = [this](StatusMenuCommand command) { chosen(command); }});
    modules_->show(presentation_);
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
  popups_.emplace(popups);
  tray_ = std::make_unique<XEmbedWindow>(
      thread, queue_, std::move(display),
      XEmbedWindow::Callbacks{
          .onState = [this](XEmbedWindow::State state) { trayChanged(state); },
          .picture = [this](int width, int height,
                            int scale) { return trayPicture(width, height, scale); },
          .onClick = [this](const XEmbedWindow::Click& click) { trayClicked(click); },
          .onEnter = [this](const ScreenPoint& pointer) { pointerEntered(pointer); },
          .onLeave = [this] { pointerLeft(); },
          .onOrientation = [this](bool isVertical) { orientationChanged(isVertical); }});
}

void LinuxStatusItem::startTray() {
  if (tray_ != nullptr && !isTrayTooNarrow_) {
    tray_->start(presentation_.image.width + 2 * sideMargin);
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
    pointerLeft();
  }
  watcherChanged(watcherState_);
}

void LinuxStatusItem::stopTray() {
  if (tray_ != nullptr) {
    tray_->stop();
    pointerLeft();
  }
}

void LinuxStatusItem::watchTray() {
  if (tray_ != nullptr) {
    tray_->watch();
    pointerLeft();
  }
}

void LinuxStatusItem::orientationChanged(bool isVertical) {
  if (isVertical == isVertical_) {
    return;
  }
  isVertical_ = isVertical;
  drawn_.clear();
  takeContent();
  explain();
  if (isRegistered()) {
    item_.announceIcon();
  }
}

PictureForm LinuxStatusItem::form() const {
  return formOn(panel(), isVertical_);
}

StatusItemReport LinuxStatusItem::report() const {
  using Tray = StatusItemFacts::Tray;
  const auto tray = [this] {
    switch (tray_->state()) {
      case XEmbedWindow::State::absent:
        return Tray::unused;
      case XEmbedWindow::State::starting:
        return Tray::starting;
      case XEmbedWindow::State::docking:
      case XEmbedWindow::State::docked:
        return Tray::docked;
      case XEmbedWindow::State::squeezed:
        return Tray::squeezed;
    }
    return Tray::unused;
  };
  StatusItemFacts facts{.watcher = watcherState_,
                        .colorScheme = colorScheme_,
                        .isVertical = isVertical_,
                        .isTrayTooNarrow = isTrayTooNarrow_};
  if (tray_ != nullptr) {
    facts.tray = tray();
    facts.trayScale = tray_->scale();
    facts.trayInk = tray_->ink();
  }
  return describe(facts);
}

AlphaBitmap LinuxStatusItem::trayPicture(int width, int height, int scale) {
  // A hair less than the window, so that rounding up meets its pixels.
  constexpr double hair = 1e-6;
  const double pointsWide = static_cast<double>(width) / scale;
  const double pointsHigh = static_cast<double>(height) / scale;
  const auto drawn = [&](const StatusImage& image) {
    ImageFrame frame = centredFrame(image, pointsWide, pointsHigh);
    frame.width -= hair;
    frame.height -= hair;
    return trayDrawn_.draw(image, frame, engine_, scale);
  };
  if (pointsWide + 1 >= presentation_.image.width) {
    return drawn(presentation_.image);
  }
  const double side = std::min(pointsWide, pointsHigh);
  return drawn(squareImage(squareContent(presentation_, squareModule_), side, engine_));
}

// Tool tips wait until the pointer rests, as the toolkits' do.
void LinuxStatusItem::pointerEntered(ScreenPoint pointer) {
  constexpr Seconds rest{0.5};
  hover_ = queue_.runAfter(rest, rest / 5, [this, pointer] {
    hover_.reset();
    if (!presentation_.toolTip.empty()) {
      popups_->toolTip.show({presentation_.toolTip, pointer, isDark()});
    }
  });
}

void LinuxStatusItem::pointerLeft() {
  hover_.reset();
  popups_->toolTip.hide();
}

void LinuxStatusItem::trayClicked(const XEmbedWindow::Click& click) {
  pointerLeft();
  if (click.button == XEmbedWindow::Button::right && actions_ != nullptr) {
    openTrayMenu(click);
    return;
  }
  popups_->menu.close();
  activated(startupId(click.time));
}

void LinuxStatusItem::openTrayMenu(const XEmbedWindow::Click& click) {
  const bool wasPaused = isPaused();
  MenuContent content;
  for (const StatusMenuEntry& entry : statusMenu(wasPaused)) {
    content.entries.push_back({static_cast<std::int32_t>(entry.command), std::string(entry.label)});
  }
  content.pointer = click.pointer;
  content.item = click.window;
  content.isDark = isDark();
  popups_->menu.open(content, [this, wasPaused, time = click.time](std::int32_t id) {
    const auto command = statusMenuCommand(id);
    // The pause state changed while the menu was open: the change was made already.
    const bool isStale = command == StatusMenuCommand::togglePause && isPaused() != wasPaused;
    if (command == StatusMenuCommand::openSettings) {
      activated(startupId(time));
    } else if (command && !isStale) {
      chosen(*command);
    }
  });
}

void LinuxStatusItem::setSquareModule(const std::optional<UUID>& module) {
  squareModule_ = module;
  const SquareContent before = square_;
  takeContent();
  if (square_ != before && isRegistered()) {
    item_.announceIcon();
  }
  if (isInTray()) {
    tray_->update(presentation_.image.width + 2 * sideMargin);
  }
}

void LinuxStatusItem::setSquareListener(std::function<void(bool)> onSquare) {
  onSquare_ = std::move(onSquare);
  onSquare_(keepsSquare_);
}

void LinuxStatusItem::reportSquare() {
  const bool keepsSquare =
      isInTray() ? tray_->state() == XEmbedWindow::State::squeezed
                 : isRegistered() && watcherState_.hasHost && form() == PictureForm::square;
  if (std::exchange(keepsSquare_, keepsSquare) != keepsSquare && onSquare_ != nullptr) {
    onSquare_(keepsSquare);
  }
}

void LinuxStatusItem::explain() {
  reportSquare();
  std::string where = whereShown();
  if (options_.onDecision != nullptr && where != explained_) {
    options_.onDecision(where);
    explained_ = std::move(where);
  }
}

std::string LinuxStatusItem::whereShown() const {
  if (isInTray()) {
    return tray_->state() == XEmbedWindow::State::docked
               ? "painel: bandeja do X11; forma: imagem inteira, em uma janela que ela mantém larga"
               : "painel: bandeja do X11; forma: o que couber na janela";
  }
  if (!watcherState_.hasHost) {
    return watcherState_.hasBus ? "painel: nenhum" : "painel: nenhum; sem barramento da sessão";
  }
  const std::string_view shown =
      modules_ != nullptr ? "um quadrado para cada módulo" : describe(form());
  return "painel: " + std::string(panel().name) + "; forma: " + std::string(shown) +
         (form() != panel().form ? ", porque o painel é vertical" : "");
}

bool LinuxStatusItem::isDark() const {
  return colorScheme_ == ColorScheme::dark;
}

bool LinuxStatusItem::isPaused() const {
  return actions_ != nullptr && actions_->isPaused != nullptr && actions_->isPaused();
}

void LinuxStatusItem::reportStatus(StatusItemSituation situation) {
  if (situation != reported_) {
    reported_ = situation;
    onSituation_(situation);
  }
}

std::size_t LinuxStatusItem::pictureCount() const {
  switch (form()) {
    case PictureForm::wide:
      return maxScale + panel().exactHeights.size();
    case PictureForm::label:
      return markSides.size();
    case PictureForm::square:
      return SquarePictures::count();
  }
  return 0;
}

StatusNotifierContent::Picture LinuxStatusItem::picture(std::size_t index) {
  if (form() == PictureForm::square) {
    return squares_.picture(index, square_, engine_);
  }
  if (index >= drawn_.size()) {
    drawn_.resize(index + 1);
  }
  Drawn& drawn = drawn_[index];
  switch (form()) {
    case PictureForm::wide: {
      const StatusImage& image = presentation_.image;
      ImageFrame frame{
          .width = image.width + 2 * sideMargin, .height = image.height, .left = sideMargin};
      double scale = 1;
      if (index < maxScale) {
        scale = static_cast<double>(index + 1);
      } else {
        frame.height = panel().exactHeights[index - maxScale];
        frame.bottom = centredFrame(image, frame.width, frame.height).bottom;
      }
      return {drawn.image.draw(image, frame, engine_, scale), plateRadius * scale};
    }
    case PictureForm::label:
      if (drawn.mark.pixels.empty()) {
        drawn.mark = applicationMark(markSides.at(index));
      }
      return {drawn.mark, 0};
    case PictureForm::square:
      break;
  }
  return {drawn.mark, 0};
}

Ink LinuxStatusItem::ink() const {
  return inkFor(panel(), colorScheme_);
}

std::string LinuxStatusItem::toolTip() const {
  return panel().hasToolTip ? toolTipFor(panel(), presentation_.toolTip) : std::string();
}

std::string LinuxStatusItem::accessibleDescription() const {
  return panel().repeatsDescription ? std::string() : presentation_.accessibilityText;
}

std::string LinuxStatusItem::label() const {
  return label_;
}

}  // namespace vantora
