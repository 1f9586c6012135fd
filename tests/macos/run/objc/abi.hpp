// SPDX-License-Identifier: MIT
//
// The structures that clang emits for Objective-C classes (its CGObjCMac.cpp, the
// "non-fragile" ABI), as far as the runtime here reads them.
#pragma once

#include <cstdint>

namespace standin {

using Selector = const char*;
using Implementation = void (*)();

struct Class;

struct Object {
  Class* isa;
};

struct Method {
  Selector name;
  const char* types;
  Implementation implementation;
};

struct MethodList {
  std::uint32_t entrySize;  // the two lowest bits are flags
  std::uint32_t count;
  Method first;
};

struct InstanceVariable {
  std::int64_t* offset;
  const char* name;
  const char* type;
  std::uint32_t alignment;
  std::uint32_t size;
};

struct InstanceVariableList {
  std::uint32_t entrySize;
  std::uint32_t count;
  InstanceVariable first;
};

struct ClassData {
  std::uint32_t flags;
  std::uint32_t instanceStart;
  std::uint32_t instanceSize;
  const std::uint8_t* strongLayout;
  const char* name;
  MethodList* methods;
  void* protocols;
  InstanceVariableList* instanceVariables;
  const std::uint8_t* weakLayout;
  void* properties;

  static constexpr std::uint32_t metaFlag = 1;
};

struct Class {
  Class* isa;
  Class* super;
  void* cache;
  void* methodTable;
  ClassData* data;
};

struct Category {
  const char* name;
  Class* extended;
  MethodList* instanceMethods;
  MethodList* classMethods;
};

}  // namespace standin
