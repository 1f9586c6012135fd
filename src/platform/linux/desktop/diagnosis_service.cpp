// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/diagnosis_service.hpp"

#include <utility>

#include "platform/linux/desktop/application_service.hpp"

namespace vantora {
namespace {

constexpr const char* method = "Diagnose";

bool isError(sd_bus_message* reply, const char* name) {
  return sd_bus_message_is_method_error(reply, name) > 0;
}

}  // namespace

const sd_bus_vtable DiagnosisService::table[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("Diagnose", "", "s", diagnose, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END,
};

DiagnosisService::DiagnosisService(BusConnection& connection, std::function<std::string()> answer)
    : connection_(connection), answer_(std::move(answer)) {
  connection_.add(*this);
}

DiagnosisService::~DiagnosisService() {
  connection_.remove(*this);
}

void DiagnosisService::busConnected(sd_bus& bus) {
  sd_bus_add_object_vtable(&bus, out(object_), ApplicationService::path, interface, table, this);
}

void DiagnosisService::busLost() {
  object_.reset();
}

int DiagnosisService::diagnose(sd_bus_message* call, void* self, sd_bus_error*) {
  const std::string text = static_cast<DiagnosisService*>(self)->answer_();
  return sd_bus_reply_method_return(call, "s", text.c_str());
}

AgentQuestion::AgentQuestion(BusConnection& connection, TaskQueue& queue,
                             std::function<void(Outcome, const char*)> done)
    : connection_(connection),
      done_(std::move(done)),
      limit_(queue.runAfter(timeout, timeout / 8, [this] {
        finish(call_ != nullptr ? Outcome::silent : Outcome::noBus);
      })) {
  connection_.add(*this);
}

AgentQuestion::~AgentQuestion() {
  connection_.remove(*this);
}

void AgentQuestion::busConnected(sd_bus& bus) {
  if (done_ == nullptr) {
    return;
  }
  sd_bus_message* message = nullptr;
  int result =
      sd_bus_message_new_method_call(&bus, &message, ApplicationService::name,
                                     ApplicationService::path, DiagnosisService::interface, method);
  if (result >= 0) {
    // Looking for an agent must not be what starts one.
    result = sd_bus_message_set_auto_start(message, 0);
  }
  if (result >= 0) {
    result = sd_bus_call_async(&bus, out(call_), message, onAnswer, this, 0);
  }
  sd_bus_message_unref(message);
  if (result < 0) {
    finish(Outcome::silent);
  }
}

void AgentQuestion::busLost() {
  call_.reset();
  finish(Outcome::noBus);
}

int AgentQuestion::onAnswer(sd_bus_message* reply, void* self, sd_bus_error*) {
  auto& question = *static_cast<AgentQuestion*>(self);
  const char* text = "";
  if (isError(reply, SD_BUS_ERROR_SERVICE_UNKNOWN) ||
      isError(reply, SD_BUS_ERROR_NAME_HAS_NO_OWNER)) {
    question.finish(Outcome::noAgent);
  } else if (isError(reply, SD_BUS_ERROR_UNKNOWN_METHOD) ||
             isError(reply, SD_BUS_ERROR_UNKNOWN_INTERFACE) ||
             isError(reply, SD_BUS_ERROR_UNKNOWN_OBJECT)) {
    question.finish(Outcome::older);
  } else if (isError(reply, nullptr) || sd_bus_message_read(reply, "s", &text) < 0) {
    question.finish(Outcome::silent);
  } else {
    question.finish(Outcome::answered, text);
  }
  return 0;
}

void AgentQuestion::finish(Outcome outcome, const char* text) {
  limit_.reset();
  if (const auto done = std::exchange(done_, nullptr)) {
    done(outcome, text);
  }
}

}  // namespace vantora
