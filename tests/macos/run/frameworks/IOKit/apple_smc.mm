// SPDX-License-Identifier: MIT
//
// IOKit's registry as far as the AppleSMC service. Played: the matching dictionary is taken
// over; a service is released apart from its connection; the user client has type 1 and one
// call, number 2, with 80 bytes each way (apple_smc.cpp says where they come from): command 9
// describes a key, command 5 reads it, and a key that is not there answers 0x84.
#import <Foundation/Foundation.h>
#import <IOKit/IOKitLib.h>

#include <algorithm>
#include <cstring>
#include <random>

#include "frameworks/Foundation/values.hpp"
#include "machine/machine.hpp"
#include "objc/fault.hpp"

namespace {

constexpr io_service_t service = 0x1234;
constexpr io_connect_t connection = 0x5678;
constexpr kern_return_t notPermitted = static_cast<kern_return_t>(0xe00002e2);
constexpr kern_return_t ioError = static_cast<kern_return_t>(0xe00002bc);
constexpr std::size_t recordSize = 80;

struct Record {
  std::uint8_t bytes[recordSize];

  std::uint32_t word(std::size_t offset) const {
    std::uint32_t value = 0;
    std::memcpy(&value, bytes + offset, sizeof value);
    return value;
  }
  void setWord(std::size_t offset, std::uint32_t value) {
    std::memcpy(bytes + offset, &value, sizeof value);
  }
};

std::string keyOf(const Record& record) {
  const std::uint32_t code = record.word(0);
  return {static_cast<char>(code >> 24), static_cast<char>(code >> 16),
          static_cast<char>(code >> 8), static_cast<char>(code)};
}

Record garbage() {
  static std::mt19937 random(1);  // NOLINT: the same bytes in every run
  Record record{};
  std::generate(std::begin(record.bytes), std::end(record.bytes),
                [] { return static_cast<std::uint8_t>(random()); });
  record.bytes[40] = 0;
  return record;
}

Record answer(const Record& asked, const standin::Machine& machine) {
  constexpr std::uint8_t describeKey = 9;
  constexpr std::uint8_t readKey = 5;
  constexpr std::uint8_t noSuchKey = 0x84;
  if (machine.controller == standin::ControllerMode::garbage) {
    return garbage();
  }
  Record record = asked;
  const auto key = machine.controllerKeys.find(keyOf(asked));
  const std::uint8_t command = asked.bytes[42];
  if (key == machine.controllerKeys.end()) {
    record.bytes[40] = noSuchKey;
  } else if (command == describeKey) {
    record.setWord(28, static_cast<std::uint32_t>(key->second.bytes.size()));
    record.setWord(32, key->second.type);
  } else if (command == readKey && asked.word(28) == key->second.bytes.size()) {
    std::copy(key->second.bytes.begin(), key->second.bytes.end(), record.bytes + 48);
  } else {
    record.bytes[40] = 1;
  }
  return record;
}

}  // namespace

extern "C" {

const mach_port_t kIOMainPortDefault = 0;

CFMutableDictionaryRef IOServiceMatching(const char* name) {
  NSDictionary* wanted = standin::newDictionary({{@"IOProviderClass", standin::newString(name)}});
  return const_cast<CFMutableDictionaryRef>((__bridge_retained CFDictionaryRef)wanted);
}

io_service_t IOServiceGetMatchingService(mach_port_t, CFDictionaryRef matching) {
  NSDictionary* wanted = (__bridge_transfer NSDictionary*)matching;
  const std::string name = standin::textOf(standin::valueIn(wanted, "IOProviderClass"));
  return standin::withMachine([&](standin::Machine& machine) -> io_service_t {
    if (name != "AppleSMC" || machine.controller == standin::ControllerMode::missing) {
      return IO_OBJECT_NULL;
    }
    ++machine.serviceReferences;
    return service;
  });
}

kern_return_t IOObjectRelease(io_object_t object) {
  return standin::withMachine([&](standin::Machine& machine) {
    if (object != service || --machine.serviceReferences < 0) {
      standin::fault("IOObjectRelease is called for something that is not owned");
    }
    return KERN_SUCCESS;
  });
}

kern_return_t IOServiceOpen(io_service_t opened, task_port_t task, uint32_t type,
                            io_connect_t* connect) {
  if (opened != service || task != mach_task_self() || type != 1) {
    standin::fault("IOServiceOpen is called with other arguments than AppleSMC wants");
  }
  return standin::withMachine([&](standin::Machine& machine) {
    ++machine.calls.controllerOpenings;
    if (machine.controller == standin::ControllerMode::refusing) {
      return notPermitted;
    }
    ++machine.openConnections;
    *connect = connection;
    return KERN_SUCCESS;
  });
}

kern_return_t IOServiceClose(io_connect_t closed) {
  return standin::withMachine([&](standin::Machine& machine) {
    if (closed != connection || --machine.openConnections < 0) {
      standin::fault("IOServiceClose is called for a connection that is not open");
    }
    return KERN_SUCCESS;
  });
}

kern_return_t IOConnectCallStructMethod(mach_port_t connect, uint32_t selector, const void* input,
                                        size_t inputSize, void* output, size_t* outputSize) {
  if (connect != connection || selector != 2 || inputSize != recordSize ||
      *outputSize != recordSize) {
    standin::fault("the controller is called with selector %u and %zu bytes for %zu", selector,
                   inputSize, *outputSize);
  }
  return standin::withMachine([&](standin::Machine& machine) {
    ++machine.calls.controllerCalls;
    if (machine.controller == standin::ControllerMode::failing) {
      return ioError;
    }
    Record asked{};
    std::memcpy(&asked, input, sizeof asked);
    const Record answered = answer(asked, machine);
    std::memcpy(output, &answered, sizeof answered);
    return KERN_SUCCESS;
  });
}

}  // extern "C"
