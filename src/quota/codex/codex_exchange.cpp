// SPDX-License-Identifier: MIT
#include "quota/codex/codex_exchange.hpp"

#include <array>
#include <cstdint>
#include <utility>

#include "model/ascii.hpp"
#include "model/json.hpp"
#include "quota/codex/login_url.hpp"

namespace vantora {

// A line that was found to be a JSON object.
class CodexExchange::Message {
 public:
  explicit Message(Json object) : object_(std::move(object)) {}
  [[nodiscard]] const Json* get(std::string_view key) const { return member(object_, key); }
  /// The member, when it is an object.
  [[nodiscard]] const Json* getObject(std::string_view key) const {
    const Json* found = get(key);
    return found != nullptr && found->isObject() ? found : nullptr;
  }
  /// Of a response; nothing makes it a notification.
  [[nodiscard]] std::optional<std::int64_t> id() const {
    const Json* found = get("id");
    return found != nullptr ? asInteger(*found) : std::nullopt;
  }

 private:
  Json object_;
};

namespace {

// The numbers of the requests, each sent in one stage only.
constexpr std::int64_t initializeId = 1;
constexpr std::int64_t accountId = 2;
constexpr std::int64_t limitsId = 3;
constexpr std::int64_t loginStartId = 4;

CodexStep finish(CodexClientResult result) {
  CodexStep step;
  step.result = std::move(result);
  return step;
}

CodexStep fail(std::string text) {
  return finish(quota_result::Failure{std::move(text)});
}

// Adds a message to what is to be sent; a step that already ends stays as it is.
void add(CodexStep& step, const Json& message) {
  if (step.result) {
    return;
  }
  if (auto text = writeJson(message)) {
    step.messages.push_back(std::move(*text));
  } else {
    step.result = quota_result::Failure{"Falha interna de serialização."};
  }
}

CodexStep request(std::int64_t id, const char* method, const std::optional<Json>& params,
                  Seconds deadline) {
  CodexStep step;
  Json message = Json::object({{"id", id}, {"method", method}});
  if (params) {
    message["params"] = *params;
  }
  add(step, message);
  step.deadline = deadline;
  return step;
}

std::optional<std::string> textMember(const Json& object, std::string_view key) {
  const Json* found = member(object, key);
  return found != nullptr ? asText(*found) : std::nullopt;
}

// The App Server's words, in English. The order decides: the permission words come before every
// code but 403, and "refresh token" alone does not mean a logged-out session.
CodexClientResult resultOfError(const Json& error) {
  const std::string message = asciiLowerCased(textMember(error, "message").value_or(""));
  const Json* codeMember = member(error, "code");
  const auto code = codeMember != nullptr ? asInteger(*codeMember) : std::nullopt;
  constexpr std::int64_t forbidden = 403;
  constexpr std::int64_t unauthorized = 401;
  constexpr std::int64_t methodNotFound = -32601;  // JSON-RPC 2.0, section 5.1
  constexpr std::array<std::string_view, 3> permissionWords{"permission", "forbidden", "policy"};
  constexpr std::array<std::string_view, 6> loginWords{"unauthorized",   "not authenticated",
                                                       "not logged in",  "authentication required",
                                                       "login required", "token expired"};
  constexpr std::array<std::string_view, 2> staleWords{"expired", "invalid"};

  if (code == forbidden || containsAny(message, permissionWords)) {
    return codex_result::PermissionDenied{};
  }
  if (code == methodNotFound || message.find("method not found") != std::string::npos) {
    return quota_result::UnsupportedVersion{};
  }
  const bool isTokenStale =
      message.find("refresh token") != std::string::npos && containsAny(message, staleWords);
  if (code == unauthorized || containsAny(message, loginWords) || isTokenStale) {
    return quota_result::NeedsAuthentication{};
  }
  return quota_result::Failure{"O App Server recusou a consulta."};
}

}  // namespace

CodexStep CodexExchange::begin() {
  const Json clientInfo =
      Json::object({{"name", "vantora_quota"}, {"title", "Vantora Quota"}, {"version", "0.1.0"}});
  return request(initializeId, "initialize", Json::object({{"clientInfo", clientInfo}}),
                 answerDeadline);
}

CodexStep CodexExchange::take(std::string_view line) {
  auto value = parseJson(line);
  if (!value || !value->isObject()) {
    return fail("Resposta inválida do App Server.");
  }
  const Message message(std::move(*value));
  return message.id() ? takeResponse(message) : takeNotification(message);
}

CodexStep CodexExchange::takeResponse(const Message& message) {
  if (stage_ == Stage::awaitLogin) {
    return {};
  }
  const auto expectedId = [this] {
    switch (stage_) {
      case Stage::initialize:
        return initializeId;
      case Stage::account:
        return accountId;
      case Stage::limits:
        return limitsId;
      case Stage::loginStart:
      case Stage::awaitLogin:
        break;
    }
    return loginStartId;
  }();
  if (message.id() != expectedId) {
    return fail("Resposta fora de ordem do App Server.");
  }
  if (const Json* error = message.getObject("error")) {
    return finish(resultOfError(*error));
  }
  const Json* result = message.getObject("result");
  if (result == nullptr) {
    return fail("Resposta vazia do App Server.");
  }
  switch (stage_) {
    case Stage::initialize:
      return afterInitialize();
    case Stage::account:
      return afterAccount(message);
    case Stage::loginStart:
      return afterLoginStart(message);
    case Stage::limits:
    case Stage::awaitLogin:
      break;
  }
  auto text = writeJson(*result);
  if (!text) {
    return fail("Não foi possível interpretar os limites.");
  }
  return finish(quota_result::Answer{std::move(*text)});
}

CodexStep CodexExchange::afterInitialize() {
  const Json initialized = Json::object({{"method", "initialized"}, {"params", Json::object()}});
  CodexStep next;
  if (mode_ == CodexClientMode::read) {
    next = askForAccount();
  } else {
    stage_ = Stage::loginStart;
    next = request(loginStartId, "account/login/start", Json::object({{"type", "chatgpt"}}),
                   answerDeadline);
  }
  CodexStep step;
  add(step, initialized);
  for (std::string& message : next.messages) {
    step.messages.push_back(std::move(message));
  }
  step.deadline = next.deadline;
  if (!step.result) {
    step.result = std::move(next.result);
  }
  return step;
}

CodexStep CodexExchange::askForAccount() {
  stage_ = Stage::account;
  return request(accountId, "account/read", Json::object({{"refreshToken", false}}),
                 answerDeadline);
}

CodexStep CodexExchange::afterAccount(const Message& message) {
  // A logged-out App Server answers with no account.
  const Json* account = member(*message.getObject("result"), "account");
  const auto type = account != nullptr ? textMember(*account, "type") : std::nullopt;
  if (!type) {
    return finish(quota_result::NeedsAuthentication{});
  }
  if (*type != "chatgpt") {
    return finish(codex_result::UnsupportedAccount{});
  }
  stage_ = Stage::limits;
  return request(limitsId, "account/rateLimits/read", std::nullopt, limitsDeadline);
}

CodexStep CodexExchange::afterLoginStart(const Message& message) {
  const Json& result = *message.getObject("result");
  auto loginId = textMember(result, "loginId");
  auto url = textMember(result, "authUrl");
  if (textMember(result, "type") != "chatgpt" || !loginId || !url || !isOfficialLoginURL(*url)) {
    return fail("O endereço de login não pôde ser validado.");
  }
  loginId_ = std::move(*loginId);
  stage_ = Stage::awaitLogin;
  CodexStep step;
  step.deadline = loginDeadline;
  step.loginURL = std::move(url);
  return step;
}

CodexStep CodexExchange::takeNotification(const Message& message) {
  const Json* method = message.get("method");
  const Json* params = message.getObject("params");
  if (stage_ != Stage::awaitLogin || method == nullptr || params == nullptr ||
      asText(*method) != "account/login/completed" || textMember(*params, "loginId") != loginId_) {
    return {};
  }
  const Json* success = member(*params, "success");
  if (success != nullptr && asBool(*success) == true) {
    return askForAccount();
  }
  return finish(quota_result::NeedsAuthentication{});
}

}  // namespace vantora
