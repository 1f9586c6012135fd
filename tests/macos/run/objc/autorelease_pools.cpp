// SPDX-License-Identifier: MIT
#include "objc/autorelease_pools.hpp"

#include <cstdint>
#include <vector>

#include "objc/class_table.hpp"
#include "objc/fault.hpp"
#include "objc/objects.hpp"

namespace standin {
namespace {

struct Pools {
  std::vector<Object*> objects;
  std::vector<std::size_t> marks;  // where each pool begins

  ~Pools() {
    if (!objects.empty()) {
      fault("a thread ends with %zu objects in its autorelease pools", objects.size());
    }
  }

  void releaseDownTo(std::size_t size) {
    while (objects.size() > size) {
      Object* last = objects.back();
      objects.pop_back();
      release(last);
    }
  }
};

thread_local Pools pools;

}  // namespace

Object* autorelease(Object* object) {
  if (object != nullptr) {
    if (pools.marks.empty()) {
      fault("an object of class %s is autoreleased with no pool in place",
            classOf(object)->data->name);
    }
    pools.objects.push_back(object);
  }
  return object;
}

std::size_t pooledObjects() {
  return pools.objects.size();
}

void drainAllPools() {
  pools.releaseDownTo(0);
}

extern "C" {

void* objc_autoreleasePoolPush() {
  pools.marks.push_back(pools.objects.size());
  return reinterpret_cast<void*>(pools.marks.size());
}

// Pops the pools inside of it too, as after an exception.
void objc_autoreleasePoolPop(void* pool) {
  const auto depth = reinterpret_cast<std::uintptr_t>(pool);
  if (depth == 0 || depth > pools.marks.size()) {
    fault("an autorelease pool is popped that is not in place");
  }
  const std::size_t begin = pools.marks[depth - 1];
  pools.releaseDownTo(begin);
  pools.marks.resize(depth - 1);
}

Object* objc_autorelease(Object* object) {
  return autorelease(object);
}
Object* objc_autoreleaseReturnValue(Object* object) {
  return autorelease(object);
}
Object* objc_retainAutorelease(Object* object) {
  return autorelease(retain(object));
}
Object* objc_retainAutoreleaseReturnValue(Object* object) {
  return autorelease(retain(object));
}

}  // extern "C"
}  // namespace standin
