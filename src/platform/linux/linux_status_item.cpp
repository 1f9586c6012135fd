// SPDX-License-Identifier: MIT
#include "platform/linux/linux_status_item.hpp"

#include <algorithm>
#include <array>
#include <utility>

#include "status/rasterise.hpp"

namespace vantora {
namespace {

// Panels are 24 points high where nobody says otherwise; the picture takes 22 of them.
constexpr double barThickness = 24;
// The item is 6 points longer than the picture: 3 on either side.
constexpr double sideMargin = 3;
constexpr double plateRadius = 5;
// How long after its watcher a panel's tray may come.
constexpr Seconds trayPatience{2};
// What panels of the usual heights ask for, and twice the smaller ones.
constexpr std::array<int, 6> squareSides{16, 22, 24, 32, 44, 48};
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
  tray_.reset();
}

double LinuxStatusItem::thickness() const {
  return barThickness;
}

void LinuxStatusItem::show(const StatusPresentation& presentation) {
  if (menu_ != nullptr) {
    menu_->refresh();
  }
  const bool isNewImage = presentation.image != image_;
  const bool isNewText = presentation.accessibilityText != text_;
  if (isNewImage) {
    image_ = presentation.image;
  }
  if (isNewText) {
    text_ = presentation.accessibilityText;
  }
  const PictureForm form = this->form();
  bool isNewIcon = isNewImage && form == PictureForm::wide;
  bool isNewLabel = false;
  if (isNewImage && form != PictureForm::wide) {
    const ModuleColumn module = squareModule_;
    const std::string label = label_;
    takeColumns();
    isNewIcon = module != squareModule_;
    isNewLabel = label != label_;
  }
  if (isNewImage && tray_ != nullptr) {
    tray_->update(image_.width + 2 * sideMargin);
  }
  if (!isRegistered()) {
    return;  // whoever comes asks for everything
  }
  if (isNewIcon) {
    item_.announceIcon();
  }
  if (isNewLabel) {
    item_.announceLabel(label_);
  }
  if (isNewText && showsToolTip(watcherState_.host)) {
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

PictureForm LinuxStatusItem::form() const {
  return pictureForm(watcherState_.host);
}

void LinuxStatusItem::colorSchemeChanged(ColorScheme scheme) {
  const Ink before = ink();
  colorScheme_ = scheme;
  if (isRegistered() && ink() != before) {
    item_.announceIcon();
  }
}

// Keeps of the image what the form needs, so that the next image can be compared.
void LinuxStatusItem::takeColumns() {
  squareModule_ = {};
  label_.clear();
  const PictureForm form = this->form();
  if (form == PictureForm::wide) {
    return;
  }
  const std::vector<ModuleColumn> columns = moduleColumns(image_, engine_);
  if (form == PictureForm::label) {
    label_ = labelText(columns);
  } else {
    squareModule_ = squareModule(columns);
  }
}

void LinuxStatusItem::watcherChanged(const StatusNotifierWatcher::State& state) {
  const bool isNewHost = state.host != watcherState_.host;
  const bool isNewBus = state.hasBus && !watcherState_.hasBus;
  watcherState_ = state;
  if (isNewHost) {
    takeColumns();
    item_.setHasLabel(form() == PictureForm::label);
  }
  if (!state.isPresent) {
    isTrayTooNarrow_ = false;
    isTrayOverdue_ = false;
    trayWait_.reset();
  } else if (keepsTrayWindowWide(state.host)) {
    startTray();
    if (awaitsTray() && trayWait_ == nullptr) {
      trayWait_ = queue_.runAfter(trayPatience, trayPatience / 4, [this] { trayIsOverdue(); });
    }
  } else if (tray_ != nullptr) {
    tray_->stop();
    pointerLeft();
  }
  watcher_.setRegistering(!state.isPresent || !(isInTray() || awaitsTray()));

  if (state.hasHost || isInTray()) {
    patience_.reset();
    tellSituation(StatusItemSituation::shown);
    return;
  }
  if (!state.hasBus) {
    tellSituation(StatusItemSituation::noBus);
  }
  if (isNewBus) {
    patience_.reset();  // a panel may be on its way as well
  }
  if (patience_ == nullptr) {
    patience_ =
        queue_.runAfter(options_.patience, options_.patience / 4, [this] { patienceEnded(); });
  }
}

// No panel has taken the item on the bus: a tray may take its window.
void LinuxStatusItem::patienceEnded() {
  startTray();
  if (!isInTray() && watcherState_.hasBus) {
    tellSituation(StatusItemSituation::noHost);
  }
}

void LinuxStatusItem::useTray(uv_loop_t& loop, std::string display, TrayPopups popups) {
  popups_.emplace(popups);
  tray_ = std::make_unique<XEmbedWindow>(
      loop, queue_, std::move(display),
      XEmbedWindow::Callbacks{
          .onState = [this](XEmbedWindow::State state) { trayChanged(state); },
          .picture = [this](int width, int height,
                            int scale) { return trayPicture(width, height, scale); },
          .onClick = [this](const XEmbedWindow::Click& click) { trayClicked(click); },
          .onEnter = [this](const ScreenPoint& pointer) { pointerEntered(pointer); },
          .onLeave = [this] { pointerLeft(); }});
}

void LinuxStatusItem::startTray() {
  if (tray_ != nullptr && !isTrayTooNarrow_) {
    tray_->start(image_.width + 2 * sideMargin);
  }
}

// A panel that starts brings its watcher before its tray: an item that registered in
// between would only come and go.
bool LinuxStatusItem::awaitsTray() const {
  return tray_ != nullptr && keepsTrayWindowWide(watcherState_.host) && !isInTray() &&
         !isTrayTooNarrow_ && !isTrayOverdue_;
}

void LinuxStatusItem::trayIsOverdue() {
  trayWait_.reset();
  isTrayOverdue_ = true;
  watcherChanged(watcherState_);
}

bool LinuxStatusItem::isInTray() const {
  return tray_ != nullptr && tray_->state() != XEmbedWindow::State::absent;
}

bool LinuxStatusItem::isRegistered() const {
  return watcherState_.isPresent && !isInTray();
}

void LinuxStatusItem::trayChanged(XEmbedWindow::State state) {
  if (state == XEmbedWindow::State::absent) {
    pointerLeft();
  }
  if (state == XEmbedWindow::State::squeezed && watcherState_.isPresent) {
    // The panel does better by the item on the bus.
    isTrayTooNarrow_ = true;
    tray_->stop();
    pointerLeft();
  }
  watcherChanged(watcherState_);
}

AlphaBitmap LinuxStatusItem::trayPicture(int width, int height, int scale) {
  const double pointsWide = static_cast<double>(width) / scale;
  const double pointsHigh = static_cast<double>(height) / scale;
  const double side = std::min(pointsWide, pointsHigh);
  const bool isWide = pointsWide + 1 >= image_.width;
  StatusImage shown = centredImage(isWide ? image_ : squareImage(squareModule_, side, engine_),
                                   pointsWide, pointsHigh);
  // A hair less than the window, so that rounding up meets its pixels.
  constexpr double hair = 1e-6;
  shown.width -= hair;
  shown.height -= hair;
  return rasterise(shown, engine_, scale);
}

// Tool tips wait until the pointer rests, as the toolkits' do.
void LinuxStatusItem::pointerEntered(ScreenPoint pointer) {
  constexpr Seconds rest{0.5};
  hover_ = queue_.runAfter(rest, rest / 5, [this, pointer] {
    hover_.reset();
    if (!text_.empty()) {
      popups_->toolTip.show({toolTipTitle(StatusItemHost::other, text_), pointer, isDark()});
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
    // The word was another's by then: what it asks for has happened already.
    const bool isStale = command == StatusMenuCommand::togglePause && isPaused() != wasPaused;
    if (command == StatusMenuCommand::openSettings) {
      activated(startupId(time));
    } else if (command && !isStale) {
      chosen(*command);
    }
  });
}

bool LinuxStatusItem::isDark() const {
  return colorScheme_ == ColorScheme::dark;
}

bool LinuxStatusItem::isPaused() const {
  return actions_ != nullptr && actions_->isPaused != nullptr && actions_->isPaused();
}

void LinuxStatusItem::tellSituation(StatusItemSituation situation) {
  if (!hasTold_ || situation != told_) {
    hasTold_ = true;
    told_ = situation;
    onSituation_(situation);
  }
}

std::size_t LinuxStatusItem::pictureCount() const {
  switch (form()) {
    case PictureForm::wide:
      return static_cast<std::size_t>(options_.largestScale);
    case PictureForm::label:
      return markSides.size();
    case PictureForm::square:
      return squareSides.size();
  }
  return 0;
}

StatusNotifierContent::Picture LinuxStatusItem::picture(std::size_t index) {
  switch (form()) {
    case PictureForm::wide: {
      StatusImage image = image_;
      image.width += 2 * sideMargin;
      for (PlacedText& text : image.texts) {
        text.x += sideMargin;
      }
      const auto scale = static_cast<double>(index + 1);
      return {rasterise(image, engine_, scale), plateRadius * scale};
    }
    case PictureForm::label:
      return {applicationMark(markSides.at(index)), 0};
    case PictureForm::square: {
      const double side = squareSides.at(index);
      return {rasterise(squareImage(squareModule_, side, engine_), engine_, 1), side / plateRadius};
    }
  }
  return {};
}

Ink LinuxStatusItem::ink() const {
  return statusItemInk(watcherState_.host, colorScheme_);
}

std::string LinuxStatusItem::toolTip() const {
  return showsToolTip(watcherState_.host) ? toolTipTitle(watcherState_.host, text_) : std::string();
}

std::string LinuxStatusItem::accessibleDescription() const {
  return repeatsDescription(watcherState_.host) ? std::string() : text_;
}

std::string LinuxStatusItem::label() const {
  return label_;
}

}  // namespace vantora
