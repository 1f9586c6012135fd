// SPDX-License-Identifier: MIT
//
// The whole exchange with a child that may do anything: a quota provider, its client and all
// between them, under virtual time. The first byte chooses the assistant and whether what the
// child does arrives at once. Then bytes are the child's standard output; after a zero byte
// a letter says what happens next (see apply()), and bytes go on.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "model/json.hpp"
#include "model/utf8.hpp"
#include "quota/claude/claude_code_usage_client.hpp"
#include "quota/claude/claude_quota_formatter.hpp"
#include "quota/claude/claude_quota_provider.hpp"
#include "quota/codex/codex_app_server_client.hpp"
#include "quota/codex/codex_quota_formatter.hpp"
#include "quota/codex/codex_quota_provider.hpp"
#include "quota/codex/login_url.hpp"
#include "support/scripted_process.hpp"
#include "support/virtual_time.hpp"

namespace {

using namespace vantora;

void require(bool isKept) {
  if (!isKept) {
    std::abort();
  }
}

void requireText(const std::string& text) {
  require(!text.empty() && repairedUtf8(text) == text);
}

const AssistantExecutable executable{"/opt/lib/tool", "/opt/bin/tool"};

struct Codex {
  using Provider = CodexQuotaProvider;
  static constexpr MetricID top = MetricID::codexWeeklyPercent;
  static constexpr MetricID bottom = MetricID::codexWeeklyReset;
  static constexpr auto settings = &AppConfiguration::codexSettings;
  // The deadlines of a login: two answers, the user, the account and the limits.
  static constexpr Seconds maxQueryTime{10 + 10 + 300 + 10 + 20};

  static CodexClientFactory factory(ConversationHost host) {
    return [host = std::move(host)](const AssistantExecutable& found, CodexClientMode mode,
                                    CodexAppServerClient::LoginURL onLoginURL,
                                    CodexAppServerClient::Completion completion) {
      return std::make_shared<CodexAppServerClient>(host, found, mode, std::move(onLoginURL),
                                                    CodexAppServerClient::ProcessStarted(),
                                                    std::move(completion));
    };
  }
  static std::string text(MetricID metric, const CodexQuotaState& state, WallTime now) {
    return CodexQuotaFormatter::text(metric, state, now).value();
  }
  static void check(const CodexQuotaState& state) {
    require(!state.usedPercent || std::isfinite(*state.usedPercent));
    for (const CodexQuotaCandidate& candidate : state.candidates) {
      requireText(candidate.title());
    }
  }
};

struct Claude {
  using Provider = ClaudeQuotaProvider;
  static constexpr MetricID top = MetricID::claudeWeeklyPercent;
  static constexpr MetricID bottom = MetricID::claudeSessionPercent;
  static constexpr auto settings = &AppConfiguration::claudeSettings;
  static constexpr Seconds maxQueryTime{45.3};

  static ClaudeClientFactory factory(ConversationHost host) {
    return [host = std::move(host)](const AssistantExecutable& found,
                                    ClaudeCodeUsageClient::Completion completion) {
      return std::make_shared<ClaudeCodeUsageClient>(
          host, found, ClaudeCodeUsageClient::usualTimeout, ClaudeCodeUsageClient::ProcessStarted(),
          std::move(completion));
    };
  }
  static std::string text(MetricID metric, const ClaudeQuotaState& state, WallTime now) {
    return ClaudeQuotaFormatter::text(metric, state, now);
  }
  static void check(const ClaudeQuotaState& state) {
    require(!state.weeklyUsed || std::isfinite(*state.weeklyUsed));
    require(!state.sessionUsed || std::isfinite(*state.sessionUsed));
  }
};

template <typename Assistant>
class Exchange {
 public:
  explicit Exchange(bool isPrompt) : isPrompt_(isPrompt) {
    configuration_.modules = {{.top = Assistant::top,
                               .bottom = Assistant::bottom,
                               .gapAfter = {},
                               .hideInactiveFans = {}}};
    auto& settings = (configuration_.*Assistant::settings).emplace();
    settings.enabled = true;
    settings.intervalMinutes = 1;
    launcher_.onStart = [this](test::ScriptedProcess& child) { takeStart(child); };
    provider_->onState = [this](const auto& state) { this->check(state); };
    if constexpr (isCodex) {
      provider_->onLoginURL = [](const std::string& url) { require(isOfficialLoginURL(url)); };
    }
    provider_->configure(configuration_, false);
    time_.runPosted();
  }

  void run(std::string_view script) {
    char action = 'o';
    while (true) {
      const std::size_t end = script.find('\0');
      apply(action, script.substr(0, end));
      if (isPrompt_) {
        time_.runPosted();
      }
      checkTime();
      if (end == std::string_view::npos || end + 1 >= script.size() || ++actions_ == maxActions) {
        break;
      }
      action = script[end + 1];
      script.remove_prefix(end + 2);
    }
    finish();
  }

 private:
  static constexpr bool isCodex = std::is_same_v<Assistant, Codex>;
  static constexpr int maxActions = 32;
  static constexpr std::size_t floodSize = 1'100'000;  // beyond the limit of what may wait

  void apply(char action, std::string_view bytes) {
    test::ScriptedProcess& child = launcher_.latest();
    switch (action) {
      case 'e':
        child.errorOutput(std::string(bytes));
        return;
      case 'x':
        child.exit({1, 0});
        break;
      case 'q':
        child.endOutput();
        break;
      case 'l':
        child.loseInput();
        break;
      case 'c':
        child.closeInput();
        break;
      case 'f':
        flood(child, bytes);
        return;
      case 'n':
        launcher_.failStarts(Fault::failed("no"));
        break;
      case '1':
        time_.advance(Seconds{0.3});
        break;
      case '2':
        time_.advance(Seconds{9.9});
        break;
      case '3':
        time_.advance(Seconds{60});
        break;
      case '4':
        time_.advance(Seconds{600});
        break;
      case 'j':
        time_.jump(Seconds{100'000});  // The machine slept.
        break;
      case 'w':
        time_.moveWallClock(Seconds{-1e6});
        break;
      case 'r':
        provider_->manualRefresh();
        break;
      case 's':
        provider_->configure(configuration_, true);
        break;
      case 'a':
        provider_->configure(configuration_, false);
        break;
      case 'i':
        (configuration_.*Assistant::settings)->intervalMinutes = 10;
        provider_->configure(configuration_, false);
        break;
      case 'b':
        actAsUser();
        break;
      case 'k':
        time_.runPosted();
        break;
      default:
        break;
    }
    if (!bytes.empty()) {
      child.output(std::string(bytes));
    }
  }

  // The same bytes until more waits than a conversation may hold; once, for it takes long.
  void flood(test::ScriptedProcess& child, std::string_view bytes) {
    if (bytes.empty() || std::exchange(hasFlooded_, true)) {
      return;
    }
    std::string many(bytes);
    while (many.size() < floodSize) {
      many += std::string(many);
    }
    child.output(std::move(many));
  }

  void actAsUser() {
    if constexpr (isCodex) {
      if (provider_->state().status == CodexQuotaStatus::needsAuthentication) {
        provider_->connectInBrowser();
      } else {
        provider_->executableSelectionChanged();
      }
    }
  }

  // One child at a time, and what it is sent is lines of JSON.
  void takeStart(test::ScriptedProcess& child) {
    const auto& started = launcher_.started();
    require(started.size() < 2 || started[started.size() - 2]->isTerminated());
    startedAt_ = time_.uptime();
    child.onInput = [](test::ScriptedProcess& /*child*/, std::string_view bytes) {
      require(bytes.ends_with('\n') && bytes.find('\n') == bytes.size() - 1);
      const auto message = parseJson(bytes);
      require(message && message->isObject());
    };
  }

  template <typename State>
  void check(const State& state) {
    requireText(state.message);
    requireText(Assistant::text(Assistant::top, state, time_.now()));
    requireText(Assistant::text(Assistant::bottom, state, time_.now()));
    Assistant::check(state);
  }

  // A query ends by its deadlines, whatever the child does. A jump of the clocks runs nothing.
  void checkTime() {
    const auto next = time_.untilNext();
    const bool isLate = next && *next <= Seconds{0};
    if (!isLate && !launcher_.latest().isTerminated()) {
      require(time_.uptime() - startedAt_ <= Assistant::maxQueryTime);
    }
    check(provider_->state());
  }

  // The end of the program: nothing waits any more, and no child lives on.
  void finish() {
    provider_->shutdown();
    provider_.reset();
    time_.runPosted();
    require(time_.pendingCount() == 0);
    for (const auto& child : launcher_.started()) {
      require(child->isTerminated() && child.use_count() == 1);
    }
  }

  bool isPrompt_;
  int actions_ = 0;
  bool hasFlooded_ = false;
  Seconds startedAt_{0};
  test::VirtualTime time_;
  std::unique_ptr<test::VirtualQueue> queue_ = time_.makeQueue();
  test::ScriptedLauncher launcher_{*queue_};
  AppConfiguration configuration_;
  std::optional<typename Assistant::Provider> provider_{
      std::in_place, typename Assistant::Provider::Ports{
                         *queue_, time_, Assistant::factory({*queue_, launcher_, "/home/user"}),
                         [] { return std::optional(executable); }, [] { return 0.5; }}};
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // Virtual time reports tasks that never end as a failed test.
  testing::FLAGS_gtest_throw_on_failure = true;
  if (size == 0) {
    return 0;
  }
  const bool isPrompt = (data[0] & 2U) == 0;
  const std::string_view script(reinterpret_cast<const char*>(data) + 1, size - 1);
  if ((data[0] & 1U) == 0) {
    Exchange<Codex>(isPrompt).run(script);
  } else {
    Exchange<Claude>(isPrompt).run(script);
  }
  return 0;
}
