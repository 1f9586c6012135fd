// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <thread>

#include "frameworks/Foundation/values.hpp"
#include "objc/class_table.hpp"
#include "runtime_tests/sample_classes.hpp"

namespace standin {
namespace {

TEST(Messages, ReachTheClassItsAncestorsAndItsCategories) {
  Dog* dog = [[Dog alloc] init];
  EXPECT_EQ(textOf([Dog kind]), "dog");
  EXPECT_EQ(textOf([Animal kind]), "animal");
  EXPECT_EQ(textOf([dog sound]), "au");
  [dog eat:@"osso"];
  EXPECT_EQ(dog->meals_, std::vector<std::string>{"osso"});
}

TEST(Messages, PassIntegersAndFloatsAndReturnStructures) {
  Animal* animal = [[Animal alloc] init];
  animal->weight_ = 2;
  EXPECT_EQ([animal weightPlus:0.5 and:1.5 times:3], 12);
  EXPECT_EQ(animal.frame.origin.y, 2);
  EXPECT_EQ(animal.frame.size.height, 4);
}

TEST(Messages, ToNilAnswerZero) {
  Animal* none = nil;
  EXPECT_EQ([none weightPlus:1 and:2 times:3], 0);
  EXPECT_EQ([none sound], nil);
}

TEST(Messages, FindInstanceVariablesBehindThoseOfTheAncestor) {
  Dog* dog = [[Dog alloc] init];
  dog->weight_ = 1.5;
  dog->tricks_ = 7;
  dog->meals_.emplace_back("a");
  EXPECT_EQ(dog->weight_, 1.5);
  EXPECT_EQ(dog->tricks_, 7);
}

TEST(Messages, KnowWhatAnObjectIsAndAnswers) {
  Dog* dog = [[Dog alloc] init];
  EXPECT_TRUE([dog isKindOfClass:[Animal class]]);
  EXPECT_FALSE([[[Animal alloc] init] isKindOfClass:[Dog class]]);
  EXPECT_TRUE([dog respondsToSelector:@selector(eat:)]);
  EXPECT_FALSE([dog respondsToSelector:@selector(addObject:)]);
}

TEST(MessagesDeathTest, ThatNoClassKnowsAreFaults) {
  id dog = [[Dog alloc] init];
  EXPECT_DEATH([dog addObject:@"x"], "stand-in: -\\[Dog addObject:\\]: unrecognized selector");
}

TEST(MessagesDeathTest, FromAnotherThreadToWhatBelongsToTheMainOneAreFaults) {
  bindToMainThread((__bridge Class*)[Ending class]);
  int count = 0;
  Ending* ending = [[Ending alloc] init];
  ending->count_ = &count;
  EXPECT_DEATH(std::thread([&] { (void)[ending class]; }).join(),
               "another thread than the main one");
}

TEST(ConstantStrings, HoldAsciiAndUtf16) {
  EXPECT_EQ(textOf(@"Pausar"), "Pausar");
  EXPECT_EQ(textOf(@"Configurações…"), "Configurações…");
  EXPECT_EQ(@"Configurações…".length, 14U);
  EXPECT_TRUE([@"a" isKindOfClass:[NSString class]]);
}

}  // namespace
}  // namespace standin
