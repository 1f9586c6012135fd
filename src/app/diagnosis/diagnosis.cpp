// SPDX-License-Identifier: MIT
#include "app/diagnosis/diagnosis.hpp"

namespace vantora {

const char* rawText(AgentPresence presence) {
  switch (presence) {
    case AgentPresence::answered:
      return "answered";
    case AgentPresence::none:
      return "none";
    case AgentPresence::noBus:
      return "noBus";
    case AgentPresence::older:
      return "older";
    case AgentPresence::silent:
      return "silent";
    case AgentPresence::garbled:
      return "garbled";
    case AgentPresence::running:
      return "running";
  }
  return "";
}

const char* rawText(FileReport::State state) {
  switch (state) {
    case FileReport::State::absent:
      return "absent";
    case FileReport::State::good:
      return "good";
    case FileReport::State::invalid:
      return "invalid";
    case FileReport::State::unreadable:
      return "unreadable";
  }
  return "";
}

}  // namespace vantora
