// SPDX-License-Identifier: MIT
//
// The weekly Codex quota: what each answer makes of the state, and the login in the browser on
// request. A refused or logged-out account is not asked again until the user acts or the
// configuration changes.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "model/quota_state.hpp"
#include "quota/codex/codex_client.hpp"
#include "quota/codex/weekly_quota_selector.hpp"
#include "quota/quota_provider.hpp"

namespace vantora {

class CodexQuotaProvider final
    : public QuotaProvider<CodexQuotaState, CodexClientResult, CodexClientFactory> {
 public:
  explicit CodexQuotaProvider(Ports ports);

  /// Receives the login page that is to be opened in the browser.
  std::function<void(const std::string& url)> onLoginURL;

  /// Starts the login in the browser. Offered to a logged-out CLI only; ignored in every other
  /// state.
  void connectInBrowser();

  /// The user selected another executable: starts again from the initial state.
  void executableSelectionChanged();

 private:
  std::shared_ptr<QuotaClient> makeReader(
      const AssistantExecutable& executable,
      std::function<void(const CodexClientResult&)> completion) override;
  void accept(const CodexClientResult& result) override;
  void showMissingExecutable() override;
  [[nodiscard]] std::optional<WallTime> passedReset(WallTime now) const override;
  [[nodiscard]] std::optional<Seconds> nextVisibleChange(WallTime now) const override;
  [[nodiscard]] bool mustQueryAgain(const CodexQuotaSettings& previous) const override;

  using QuotaProvider::take;
  void take(const quota_result::Answer& answer);
  void take(const CodexQuotaReading& reading);
  void take(const quota_result::NeedsAuthentication& result);
  void take(const codex_result::UnsupportedAccount& result);
  void take(const codex_result::PermissionDenied& result);
  void take(const quota_result::UnsupportedVersion& result);

  void showSelection(const CodexQuotaSelection& selection);
  void showLoginPage(const std::string& url);
  void refuse(CodexQuotaStatus status, const std::string& message);
  void clearValues();
};

}  // namespace vantora
