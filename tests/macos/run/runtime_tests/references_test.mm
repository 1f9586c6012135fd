// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <thread>

#include "objc/autorelease_pools.hpp"
#include "objc/blocks.hpp"
#include "objc/objects.hpp"
#include "runtime_tests/sample_classes.hpp"

namespace standin {
namespace {

Ending* endingThatCounts(int& count) {
  Ending* ending = [[Ending alloc] init];
  ending->count_ = &count;
  return ending;
}

Object* raw(id object) {
  return (__bridge Object*)object;
}

TEST(References, EndTheObjectWithTheLastOne) {
  int ends = 0;
  @autoreleasepool {
    Ending* first = endingThatCounts(ends);
    Ending* second = first;
    first = nil;
    EXPECT_EQ(ends, 0);
    EXPECT_NE(second, nil);
  }
  EXPECT_EQ(ends, 1);
}

TEST(References, OfPropertiesAreStrongOrWeakAsDeclared) {
  @autoreleasepool {
    Animal* child = [[Animal alloc] init];
    @autoreleasepool {
      Animal* parent = [[Animal alloc] init];
      parent.friendOfIts = child;
      child.parent = parent;
      EXPECT_EQ(child.parent, parent);
      EXPECT_EQ(parent.friendOfIts, child);
    }
    EXPECT_EQ(child.parent, nil);
  }
  EXPECT_FALSE(census().contains("Animal"));
}

TEST(References, ThatAreWeakMayBeCopiedAndMoved) {
  __weak Animal* first = nil;
  __weak Animal* second = nil;
  @autoreleasepool {
    Animal* animal = [[Animal alloc] init];
    first = animal;
    second = first;
    EXPECT_EQ(second, animal);
  }
  EXPECT_EQ(first, nil);
  EXPECT_EQ(second, nil);
}

TEST(References, DestroyMembersOfCxx) {
  const long before = livingObjects();
  @autoreleasepool {
    Dog* dog = [[Dog alloc] init];
    dog->meals_.assign(100, "uma refeição que não cabe no próprio texto");
  }
  EXPECT_EQ(livingObjects(), before);
}

TEST(ReferencesDeathTest, OneTooManyReleasedIsAFault) {
  EXPECT_DEATH(
      {
        Object* object = allocate(reinterpret_cast<Class*>((__bridge Object*)[Animal class]));
        release(object);
        release(object);
      },
      "released once more|heap-use-after-free");
}

TEST(ReferencesDeathTest, AMessageToWhatIsGoneIsAFault) {
  EXPECT_DEATH(
      {
        Object* object = allocate(reinterpret_cast<Class*>((__bridge Object*)[Animal class]));
        release(object);
        (void)[(__bridge Animal*)object sound];
      },
      "that is gone|heap-use-after-free");
}

TEST(AutoreleasePools, ReleaseWhatCameSinceTheyBegan) {
  int ends = 0;
  @autoreleasepool {
    autorelease((__bridge_retained Object*)endingThatCounts(ends));
    @autoreleasepool {
      autorelease((__bridge_retained Object*)endingThatCounts(ends));
      EXPECT_GE(pooledObjects(), 2U);
    }
    EXPECT_EQ(ends, 1);
  }
  EXPECT_EQ(ends, 2);
}

TEST(AutoreleasePoolsDeathTest, HaveToBeInPlaceOnEveryThread) {
  Animal* animal = [[Animal alloc] init];
  EXPECT_DEATH(std::thread([&] { autorelease(retain(raw(animal))); }).join(), "no pool in place");
}

TEST(Blocks, KeepWhatTheyUseUntilTheyGo) {
  int ends = 0;
  const long before = livingBlocks();
  @autoreleasepool {
    void (^kept)(void) = nil;
    @autoreleasepool {
      Ending* ending = endingThatCounts(ends);
      kept = ^{
        (void)ending;
      };
    }
    EXPECT_EQ(ends, 0);
    EXPECT_EQ(livingBlocks(), before + 1);
    kept();
  }
  EXPECT_EQ(ends, 1);
  EXPECT_EQ(livingBlocks(), before);
}

TEST(Blocks, WithoutSurroundingsAreNeverCopied) {
  const long before = livingBlocks();
  int (^answer)(void) = ^{
    return 42;
  };
  EXPECT_EQ(answer(), 42);
  EXPECT_EQ(livingBlocks(), before);
}

}  // namespace
}  // namespace standin
