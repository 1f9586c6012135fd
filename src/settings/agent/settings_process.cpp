// SPDX-License-Identifier: MIT
#include "settings/agent/settings_process.hpp"

#include <algorithm>
#include <utility>

#include "settings/agent/let_go.hpp"

namespace vantora {

using namespace SettingsProtocol;

namespace {

// The most categories that the window is offered: far more than any account has, and few
// enough for a line.
constexpr std::size_t mostCandidates = 100;

constexpr const char* brokenText = "A janela de configurações falhou e foi fechada.";
constexpr const char* hangingText = "A janela de configurações parou de responder e foi fechada.";
constexpr const char* unopenedText = "A janela de configurações não pôde ser aberta.";

QuotaSummary summaryOf(const CodexQuotaState& state, std::string executable) {
  const auto count = static_cast<std::ptrdiff_t>(std::min(mostCandidates, state.candidates.size()));
  return {state.message,
          state.lastSuccess,
          std::move(executable),
          {state.candidates.begin(), state.candidates.begin() + count}};
}

QuotaSummary summaryOf(const ClaudeQuotaState& state, std::string executable) {
  return {state.message, state.lastSuccess, std::move(executable), {}};
}

void call(const std::function<void()>& callback) {
  if (callback) {
    callback();
  }
}

}  // namespace

SettingsProcess::SettingsProcess(Parts parts) : parts_(std::move(parts)) {
  parts_.model.onFieldChange = [this, alive = std::weak_ptr(alive_)](SettingsModel::Field) {
    if (!alive.expired()) {
      touch();
    }
  };
}

void SettingsProcess::show(std::string_view activationToken) {
  if (child_ == nullptr) {
    start(activationToken);
  } else if (scale_ && !child_->write(raiseLine(activationToken))) {
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
  ChildProcessEvents events;
  events.onOutput = [this](std::string_view bytes) { received(bytes); };
  events.onExit = [this](ChildExit exit) { ended(exit); };
  auto started = parts_.launcher.start(options, std::move(events));
  if (!started) {
    fail(unopenedText + (started.fault().detail.empty() ? "" : " " + started.fault().detail));
    return;
  }
  child_ = std::move(started).value();
  awaitAnswer();
}

void SettingsProcess::received(std::string_view bytes) {
  if (!framer_.append(bytes)) {
    fail(brokenText);
    return;
  }
  // A message may end the window, or the window and this object's interest in it.
  while (child_ != nullptr) {
    const auto line = framer_.takeLine();
    if (!line) {
      return;
    }
    auto message = readWindowLine(*line);
    if (!message || isFlood() || (!scale_ && !std::holds_alternative<Ready>(*message))) {
      fail(brokenText);
      return;
    }
    std::visit([this](auto&& part) { handle(std::forward<decltype(part)>(part)); },
               *std::move(message));
  }
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
  letGo(child_, parts_.queue);
  answerTimer_.reset();
  framer_.clear();
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
  parts_.model.setConfiguration(std::move(change.configuration));
  touch();
}

void SettingsProcess::handle(const StartAtLogin& request) {
  parts_.model.setStartAtLogin(request.enabled);
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
      parts_.model.setConfiguration(AppConfiguration{});
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
  touch();  // The description of the executable may be another now.
}

bool SettingsProcess::isFlood() {
  const Seconds now = parts_.clock.uptime();
  if (now - secondBegan_ >= Seconds{1}) {
    secondBegan_ = now;
    messagesThisSecond_ = 0;
  }
  return ++messagesThisSecond_ > messagesPerSecond;
}

// Something may have changed: the window is told once what is under way now has ended.
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
  if (child_ == nullptr || !scale_ || isAwaitingAnswer_) {
    return;
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
  if (!child_->write(stateLine(shown_, change))) {
    fail(brokenText);
    return;
  }
  awaitAnswer();
}

void SettingsProcess::awaitAnswer() {
  isAwaitingAnswer_ = true;
  answerTimer_ = parts_.queue.runAfter(answerLimit, Seconds{1}, [this] { fail(hangingText); });
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
  if (isPictureOld_ && parts_.rasterise) {
    AlphaBitmap bitmap = parts_.rasterise(presentation_.image, *scale_);
    state.picture.columns = bitmap.width;
    state.picture.rows = bitmap.height;
    state.picture.alpha = std::move(bitmap.pixels);
    state.picture.width = presentation_.width;
    state.picture.scale = *scale_;
    state.picture.warning = presentation_.warning;
    isPictureOld_ = false;
  } else {
    state.picture = shown_.picture;
  }
  return state;
}

}  // namespace vantora
