// SPDX-License-Identifier: MIT
#include "settings/agent/settings_process.hpp"

#include <algorithm>
#include <utility>

#include "settings/agent/metric_readings.hpp"

namespace vantora {

using namespace SettingsProtocol;

namespace {

// The most categories that the window is offered: far more than any account has, and few
// enough for a line.
constexpr std::size_t maxCandidates = 100;

// The window shows the picture at twice its size as well. A wider one than this it enlarges
// itself, so that a line with both stays far below what the window reads.
constexpr double enlargement = 2;
constexpr double maxEnlargedPixels = 1e6;

constexpr const char* brokenText = "A janela de configurações falhou e foi fechada.";
constexpr const char* hangingText = "A janela de configurações parou de responder e foi fechada.";
constexpr const char* unopenedText = "A janela de configurações não pôde ser aberta.";

QuotaSummary summaryOf(const CodexQuotaState& state, std::string executable) {
  const auto count = static_cast<std::ptrdiff_t>(std::min(maxCandidates, state.candidates.size()));
  return {state.message,
          state.lastSuccess,
          std::move(executable),
          {state.candidates.begin(), state.candidates.begin() + count},
          state.status == CodexQuotaStatus::needsAuthentication};
}

QuotaSummary summaryOf(const ClaudeQuotaState& state, std::string executable) {
  return {state.message, state.lastSuccess, std::move(executable), {}, false};
}

void call(const std::function<void()>& callback) {
  if (callback) {
    callback();
  }
}

}  // namespace

SettingsProcess::SettingsProcess(Parts parts)
    : parts_(std::move(parts)),
      conversation_(parts_.queue, parts_.launcher, agentReadLimit,
                    {[this](std::string_view line) { return received(line); },
                     [this] { fail(brokenText); }, [this](ChildExit exit) { ended(exit); }}) {
  parts_.model.onFieldChange = [this, alive = std::weak_ptr(alive_)](SettingsModel::Field) {
    if (!alive.expired()) {
      touch();
    }
  };
}

void SettingsProcess::show(std::string_view activationToken) {
  if (!conversation_.isOpen()) {
    start(activationToken);
  } else if (scale_ && !conversation_.write(raiseLine(activationToken))) {
    fail(brokenText);
  }
  touch();
}

void SettingsProcess::showStatus(const StatusPresentation& presentation) {
  presentation_ = presentation;
  isPictureOld_ = true;
  touch();
}

void SettingsProcess::close() {
  forget();
}

void SettingsProcess::start(std::string_view activationToken) {
  ChildProcessOptions options;
  options.executable = parts_.executable;
  // For Wayland and for X11 (xdg-activation, startup notification).
  options.environmentChanges = {{"XDG_ACTIVATION_TOKEN", std::string(activationToken)},
                                {"DESKTOP_STARTUP_ID", std::string(activationToken)}};
  if (const auto fault = conversation_.start(options)) {
    fail(unopenedText + (" " + fault->detail));
    return;
  }
  awaitAnswer();
}

bool SettingsProcess::received(std::string_view line) {
  auto message = readWindowLine(line);
  if (!message || isFlood() || (!scale_ && !std::holds_alternative<Ready>(*message))) {
    return false;
  }
  std::visit([this](auto&& part) { handle(std::forward<decltype(part)>(part)); },
             *std::move(message));
  return true;
}

void SettingsProcess::ended(ChildExit exit) {
  const bool wasReady = scale_.has_value();
  if (exit != ChildExit{}) {
    fail(wasReady ? brokenText : unopenedText);
  } else {
    forget();
  }
}

void SettingsProcess::fail(const std::string& message) {
  forget();
  parts_.model.report(message);
  if (onFailure) {
    onFailure(message);
  }
}

void SettingsProcess::forget() {
  conversation_.end();
  answerTimer_.reset();
  scale_.reset();
  shown_ = {};
  wasShown_ = false;
  revision_ = 0;
  sequence_ = 0;
  isAwaitingAnswer_ = false;
  isPictureOld_ = true;
  messagesThisSecond_ = 0;
}

void SettingsProcess::handle(const Ready& ready) {
  if (!scale_) {
    isAwaitingAnswer_ = false;
    answerTimer_.reset();
  }
  scale_ = ready.scale;
  isPictureOld_ = true;
  touch();
}

void SettingsProcess::handle(const Seen& seen) {
  if (!isAwaitingAnswer_ || seen.sequence != sequence_) {
    fail(brokenText);
    return;
  }
  isAwaitingAnswer_ = false;
  answerTimer_.reset();
  touch();
}

void SettingsProcess::handle(NewConfiguration change) {
  revision_ = change.revision;
  shown_.configuration = change.configuration;
  if (change.pendingScrollID) {
    shown_.pendingScrollID = change.pendingScrollID;
    parts_.model.setPendingScrollID(change.pendingScrollID);
  }
  parts_.model.setConfiguration(
      std::move(change.configuration),
      change.isRemoval ? std::optional(UndoableEdit::removal) : std::nullopt);
}

void SettingsProcess::handle(const StartAtLogin& request) {
  parts_.model.setStartAtLogin(request.enabled);
}

void SettingsProcess::handle(const SquareModule& choice) {
  if (shown_.square) {
    shown_.square->module = choice.module;
  }
  parts_.model.setSquareModule(choice.module);
}

void SettingsProcess::handle(Intent intent) {
  switch (intent) {
    case Intent::refreshCodex:
      call(parts_.model.onQuotaRefresh);
      break;
    case Intent::connectCodex:
      call(parts_.model.onQuotaConnect);
      break;
    case Intent::refreshClaude:
      call(parts_.model.onClaudeRefresh);
      break;
    case Intent::restoreDefaults:
      parts_.model.restoreDefaults();
      break;
    case Intent::undo:
      parts_.model.undo();
      break;
    case Intent::listLinks:
      call(parts_.model.onLinksWanted);
      break;
    case Intent::scrolled:
      shown_.pendingScrollID.reset();
      parts_.model.setPendingScrollID(std::nullopt);
      break;
  }
}

void SettingsProcess::handle(const PathRequest& request) {
  switch (request.intent) {
    case PathIntent::exportJSON:
      parts_.model.exportJSON(request.path);
      break;
    case PathIntent::importJSON:
      parts_.model.importJSON(request.path);
      break;
    case PathIntent::selectCodexExecutable:
      parts_.model.selectCodexExecutable(request.path);
      break;
  }
}

bool SettingsProcess::isFlood() {
  const Seconds now = parts_.clock.uptime();
  if (now - secondBegan_ >= Seconds{1}) {
    secondBegan_ = now;
    messagesThisSecond_ = 0;
  }
  return ++messagesThisSecond_ > messagesPerSecond;
}

// Something may have changed. The new state is sent once the current task has ended.
void SettingsProcess::touch() {
  if (scale_ && !isAwaitingAnswer_ && !isFlushPosted_) {
    isFlushPosted_ = true;
    parts_.queue.post([this, alive = std::weak_ptr(alive_)] {
      if (!alive.expired()) {
        isFlushPosted_ = false;
        flush();
      }
    });
  }
}

void SettingsProcess::flush() {
  if (!scale_) {
    return;  // The window has ended meanwhile, and another may have been started.
  }
  WindowState now = currentState();
  StateChange change;
  change.fields = wasShown_ ? differences(now, shown_) : allWindowFields;
  if (change.fields.empty()) {
    return;
  }
  change.sequence = ++sequence_;
  change.revision = revision_;
  shown_ = std::move(now);
  wasShown_ = true;
  if (!conversation_.write(stateLine(shown_, change))) {
    fail(brokenText);
    return;
  }
  awaitAnswer();
}

void SettingsProcess::awaitAnswer() {
  isAwaitingAnswer_ = true;
  answerTimer_ = parts_.queue.runAfter(answerLimit, Seconds{1}, [this] { fail(hangingText); });
}

StatusPicture SettingsProcess::pictureOf(const StatusPresentation& presentation, double scale) {
  StatusPicture picture;
  AlphaBitmap bitmap = parts_.rasterise(presentation.image, scale);
  picture.width = presentation.width;
  picture.scale = scale;
  picture.columns = bitmap.width;
  picture.rows = bitmap.height;
  picture.alpha = std::move(bitmap.pixels);
  picture.warning = presentation.warning;
  picture.spoken = presentation.accessibilityText;
  for (const StatusModule& module : presentation.modules) {
    picture.blocks.push_back({module.id, module.x, module.width});
  }
  const double enlarged = scale * enlargement;
  const StatusImage& image = presentation.image;
  if (scales.contains(enlarged) &&
      image.width * image.height * enlarged * enlarged <= maxEnlargedPixels) {
    bitmap = parts_.rasterise(image, enlarged);
    picture.enlarged = {enlarged, bitmap.width, bitmap.height, std::move(bitmap.pixels)};
  }
  return picture;
}

WindowState SettingsProcess::currentState() {
  const SettingsModel& model = parts_.model;
  WindowState state;
  state.configuration = model.configuration();
  state.networkName = model.snapshot().networkName;
  state.codex = summaryOf(model.snapshot().codex,
                          parts_.codexExecutable ? parts_.codexExecutable() : std::string());
  state.claude = summaryOf(model.snapshot().claude,
                           parts_.claudeExecutable ? parts_.claudeExecutable() : std::string());
  state.notice = model.notice();
  state.loginItemStatus = model.loginItemStatus();
  state.pendingScrollID = model.pendingScrollID();
  state.undoable = model.undoable();
  state.links = model.links();
  state.backupPath = model.backupFile().string();
  state.readings = metricReadings(model.configuration(), model.snapshot(), parts_.clock.now());
  if (model.keepsSquare()) {
    state.square = SquareChoice{model.squareModule()};
  }
  if (isPictureOld_ && parts_.rasterise) {
    state.picture = pictureOf(presentation_, *scale_);
    isPictureOld_ = false;
  } else {
    state.picture = shown_.picture;
  }
  return state;
}

}  // namespace vantora
