// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/application_service.hpp"

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <utility>

namespace vantora {
namespace {

// The keys of the platform data that go with each request.
constexpr std::string_view activationTokenKey = "activation-token";
constexpr std::string_view startupIdKey = "desktop-startup-id";

// Answers to RequestName (freedesktop.org, D-Bus, "org.freedesktop.DBus.RequestName").
constexpr std::uint32_t primaryOwner = 1;
constexpr std::uint32_t alreadyOwner = 4;

// An owner that ends while it is asked leaves the name to us or to another process, which
// is asked in turn, at most this often.
constexpr int maxTimesAsked = 3;

std::string token(const char* value) {
  const std::string_view text = value == nullptr ? "" : value;
  const bool isPrintable =
      std::all_of(text.begin(), text.end(), [](char byte) { return byte >= ' ' && byte <= '~'; });
  return isPrintable ? std::string(text) : std::string();
}

int appendToken(sd_bus_message* message, std::string_view key, const std::string& token) {
  return token.empty() ? 0 : sd_bus_message_append(message, "{sv}", key.data(), "s", token.c_str());
}

int appendPlatformData(sd_bus_message* message, const LaunchTokens& tokens) {
  int result = sd_bus_message_open_container(message, SD_BUS_TYPE_ARRAY, "{sv}");
  if (result >= 0) {
    result = appendToken(message, activationTokenKey, tokens.activation);
  }
  if (result >= 0) {
    result = appendToken(message, startupIdKey, tokens.startupId);
  }
  return result < 0 ? result : sd_bus_message_close_container(message);
}

// Skips everything else in the data.
int readPlatformData(sd_bus_message* message, LaunchTokens& tokens) {
  int result = sd_bus_message_enter_container(message, SD_BUS_TYPE_ARRAY, "{sv}");
  if (result < 0) {
    return result;
  }
  while ((result = sd_bus_message_enter_container(message, SD_BUS_TYPE_DICT_ENTRY, "sv")) > 0) {
    const char* key = "";
    const char* contents = "";
    result = sd_bus_message_read_basic(message, SD_BUS_TYPE_STRING, &key);
    if (result >= 0) {
      result = sd_bus_message_peek_type(message, nullptr, &contents);
    }
    if (result < 0) {
      return result;
    }
    std::string* wanted = key == activationTokenKey ? &tokens.activation
                          : key == startupIdKey     ? &tokens.startupId
                                                    : nullptr;
    const char* value = "";
    if (wanted == nullptr || std::string_view(contents) != "s") {
      result = sd_bus_message_skip(message, "v");
    } else {
      result = sd_bus_message_read(message, "v", "s", &value);
      *wanted = token(value);
    }
    if (result < 0 || (result = sd_bus_message_exit_container(message)) < 0) {
      return result;
    }
  }
  return result;
}

bool isGone(sd_bus_message* reply) {
  return sd_bus_message_is_method_error(reply, SD_BUS_ERROR_SERVICE_UNKNOWN) > 0 ||
         sd_bus_message_is_method_error(reply, SD_BUS_ERROR_NAME_HAS_NO_OWNER) > 0 ||
         sd_bus_message_is_method_error(reply, SD_BUS_ERROR_NO_REPLY) > 0;
}

}  // namespace

LaunchTokens LaunchTokens::from(const char* activationToken, const char* startupId) {
  return {token(activationToken), token(startupId)};
}

const sd_bus_vtable ApplicationService::table[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("Activate", "a{sv}", "", activate, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("Open", "asa{sv}", "", open, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("ActivateAction", "sava{sv}", "", activateAction, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END,
};

template <ApplicationService::Handler handler>
int ApplicationService::handle(sd_bus_message* message, void* self, sd_bus_error*) {
  (static_cast<ApplicationService*>(self)->*handler)(message);
  return 0;
}

ApplicationService::ApplicationService(BusConnection& connection, TaskQueue& queue,
                                       LaunchTokens tokens)
    : connection_(connection),
      tokens_(std::move(tokens)),
      limit_(queue.runAfter(startTimeout, startTimeout / 8, [this] {
        decide(timesAsked_ > 0 ? ApplicationStart::silentAnother : ApplicationStart::first);
      })) {
  connection_.add(*this);
}

ApplicationService::~ApplicationService() {
  connection_.remove(*this);
}

void ApplicationService::busConnected(sd_bus& bus) {
  bus_ = &bus;
  // Before the name, so that a caller who finds the name finds the object.
  sd_bus_add_object_vtable(bus_, out(object_), path, interface, table, this);
  requestName();
}

void ApplicationService::busLost() {
  bus_ = nullptr;
  for (BusSlot* slot : {&object_, &nameCall_, &askCall_, &ownerMatch_}) {
    slot->reset();
  }
  decide(timesAsked_ > 0 ? ApplicationStart::silentAnother : ApplicationStart::first);
}

void ApplicationService::requestName() {
  // No replacement of the owner, none of us, and no queueing for the name.
  if (sd_bus_request_name_async(bus_, out(nameCall_), name, 0, handle<&ApplicationService::onName>,
                                this) < 0) {
    decide(ApplicationStart::first);
  }
}

void ApplicationService::onName(sd_bus_message* reply) {
  std::uint32_t result = 0;
  const bool isRefused = sd_bus_message_is_method_error(reply, nullptr) > 0 ||
                         sd_bus_message_read(reply, "u", &result) < 0;
  if (isRefused) {
    decide(ApplicationStart::first);  // a bus that refuses names cannot guard anything
  } else if (result == primaryOwner || result == alreadyOwner) {
    ownerMatch_.reset();
    decide(ApplicationStart::first);
  } else if (!start_) {
    askOwner();
  } else if (start_ == ApplicationStart::first) {
    followOwner();
  }
}

void ApplicationService::askOwner() {
  if (timesAsked_ == maxTimesAsked) {
    decide(ApplicationStart::silentAnother);
    return;
  }
  ++timesAsked_;
  sd_bus_message* message = nullptr;
  int result = sd_bus_message_new_method_call(bus_, &message, name, path, interface, "Activate");
  if (result >= 0) {
    // The bus must not start an owner that has just ended: this process takes its place.
    result = sd_bus_message_set_auto_start(message, 0);
  }
  if (result >= 0) {
    result = appendPlatformData(message, tokens_);
  }
  if (result >= 0) {
    result = sd_bus_call_async(bus_, out(askCall_), message, handle<&ApplicationService::onAnswer>,
                               this, 0);
  }
  sd_bus_message_unref(message);
  if (result < 0) {
    decide(ApplicationStart::silentAnother);
  }
}

void ApplicationService::onAnswer(sd_bus_message* reply) {
  if (start_) {
    return;
  }
  if (isGone(reply)) {
    requestName();
  } else if (sd_bus_message_is_method_error(reply, notYetError) > 0) {
    decide(ApplicationStart::startingAnother);
  } else if (sd_bus_message_is_method_error(reply, nullptr) > 0) {
    decide(ApplicationStart::silentAnother);
  } else {
    decide(ApplicationStart::another);
  }
}

void ApplicationService::followOwner() {
  if (ownerMatch_ != nullptr) {
    return;
  }
  const std::string rule =
      std::string(
          "type='signal',sender='org.freedesktop.DBus',path='/org/freedesktop/DBus',"
          "interface='org.freedesktop.DBus',member='NameOwnerChanged',arg0='") +
      name + "'";
  sd_bus_add_match_async(bus_, out(ownerMatch_), rule.c_str(),
                         handle<&ApplicationService::onOwnerChanged>, nullptr, this);
  if (ownerMatch_ != nullptr) {
    requestName();  // it may have been given up before the match stood
  }
  if (onRival != nullptr) {
    onRival();
  }
}

void ApplicationService::onOwnerChanged(sd_bus_message* signal) {
  const char* changed = "";
  const char* before = "";
  const char* now = "";
  if (sd_bus_message_read(signal, "sss", &changed, &before, &now) >= 0 && *now == '\0') {
    requestName();
  }
}

void ApplicationService::decide(ApplicationStart start) {
  limit_.reset();
  if (!start_) {
    start_ = start;
  }
}

int ApplicationService::reopen(sd_bus_message* call) {
  LaunchTokens tokens;
  const int result = readPlatformData(call, tokens);
  if (result < 0) {
    return result;
  }
  const std::string& token = tokens.activation.empty() ? tokens.startupId : tokens.activation;
  if (onActivate == nullptr || !onActivate(token)) {
    return sd_bus_reply_method_errorf(call, notYetError, "The agent has only just started");
  }
  return sd_bus_reply_method_return(call, "");
}

int ApplicationService::activate(sd_bus_message* call, void* self, sd_bus_error*) {
  return static_cast<ApplicationService*>(self)->reopen(call);
}

// There are no files to open: it is the same as a start without any.
int ApplicationService::open(sd_bus_message* call, void* self, sd_bus_error*) {
  const int result = sd_bus_message_skip(call, "as");
  return result < 0 ? result : static_cast<ApplicationService*>(self)->reopen(call);
}

int ApplicationService::activateAction(sd_bus_message*, void*, sd_bus_error* error) {
  return sd_bus_error_set_const(error, SD_BUS_ERROR_INVALID_ARGS, "No such action");
}

}  // namespace vantora
