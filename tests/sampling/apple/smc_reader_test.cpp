// SPDX-License-Identifier: MIT
#include "sampling/apple/smc_reader.hpp"

#include <gtest/gtest.h>

#include <limits>

#include "support/scripted_smc.hpp"

namespace vantora {
namespace {

using test::floatKey;
using test::SMCKey;
using test::uint8Key;

constexpr int describing = 9;
constexpr int reading = 5;

class SMCReader : public testing::Test {
 protected:
  test::ScriptedSMC controller;
  std::unique_ptr<vantora::SMCReader> reader = vantora::SMCReader::open(controller.opener());
};

TEST_F(SMCReader, IsNotThereWithoutAController) {
  controller.refuses = true;
  EXPECT_EQ(vantora::SMCReader::open(controller.opener()), nullptr);
}

TEST_F(SMCReader, ClosesItsConnectionWhenItEnds) {
  EXPECT_EQ(controller.open, 1);
  reader.reset();
  EXPECT_EQ(controller.open, 0);
}

TEST_F(SMCReader, ReadsAFloat) {
  controller.keys["TB1T"] = floatKey(31.25F);
  EXPECT_EQ(reader->readFloat("TB1T"), 31.25);
}

TEST_F(SMCReader, ReadsAByte) {
  controller.keys["FNum"] = uint8Key(2);
  EXPECT_EQ(reader->readUInt8("FNum"), 2);
}

TEST_F(SMCReader, AsksForTheDescriptionFirstAndThenForItsBytes) {
  controller.keys["TB1T"] = floatKey(31.25F);
  (void)reader->readFloat("TB1T");
  const std::vector<test::ScriptedSMC::Call> expected{{"TB1T", describing, 0},
                                                      {"TB1T", reading, 4}};
  EXPECT_EQ(controller.calls, expected);
}

TEST_F(SMCReader, BuildsARecordOfZeroesButForKeySizeAndCommand) {
  controller.keys["TB1T"] = floatKey(31.25F);
  (void)reader->readFloat("TB1T");
  SMCRecord expected{};
  expected[0] = 'T';  // 0x54423154, the lowest byte first
  expected[1] = '1';
  expected[2] = 'B';
  expected[3] = 'T';
  expected[42] = 9;
  EXPECT_EQ(controller.inputs.at(0), expected);
  expected[28] = 4;
  expected[42] = 5;
  EXPECT_EQ(controller.inputs.at(1), expected);
}

TEST_F(SMCReader, AsksAboutAKeyOnce) {
  controller.keys["TB1T"] = floatKey(31.25F);
  for (int pass = 0; pass < 3; ++pass) {
    EXPECT_EQ(reader->readFloat("TB1T"), 31.25);
  }
  EXPECT_EQ(controller.count("TB1T", describing), 1);
  EXPECT_EQ(controller.count("TB1T", reading), 3);
}

TEST_F(SMCReader, NeverAsksAgainAboutAKeyThatIsMissing) {
  EXPECT_EQ(reader->readFloat("TB1T"), std::nullopt);
  controller.keys["TB1T"] = floatKey(31.25F);
  EXPECT_EQ(reader->readFloat("TB1T"), std::nullopt);
  EXPECT_EQ(reader->readUInt8("TB1T"), std::nullopt);
  EXPECT_EQ(controller.calls.size(), 1U);
}

TEST_F(SMCReader, ForgetsWhatIsMissingWithTheReader) {
  EXPECT_EQ(reader->readFloat("TB1T"), std::nullopt);
  controller.keys["TB1T"] = floatKey(31.25F);
  reader = vantora::SMCReader::open(controller.opener());
  EXPECT_EQ(reader->readFloat("TB1T"), 31.25);
}

TEST_F(SMCReader, TakesAKeyWhoseDescriptionFailsForMissing) {
  controller.keys["TB1T"] = floatKey(31.25F);
  controller.keys["TB1T"].infoFails = true;
  controller.keys["TB2T"] = floatKey(31.25F);
  controller.keys["TB2T"].infoResult = 1;
  for (int pass = 0; pass < 2; ++pass) {
    EXPECT_EQ(reader->readFloat("TB1T"), std::nullopt);
    EXPECT_EQ(reader->readFloat("TB2T"), std::nullopt);
  }
  EXPECT_EQ(controller.calls.size(), 2U);
}

TEST_F(SMCReader, RetriesAfterAFailedRead) {
  controller.keys["TB1T"] = floatKey(31.25F);
  controller.keys["TB1T"].readFails = true;
  EXPECT_EQ(reader->readFloat("TB1T"), std::nullopt);
  controller.keys["TB1T"].readFails = false;
  EXPECT_EQ(reader->readFloat("TB1T"), 31.25);
  EXPECT_EQ(controller.count("TB1T", describing), 1);
  EXPECT_EQ(controller.count("TB1T", reading), 2);
}

TEST_F(SMCReader, RetriesAfterAReadWithAResultOtherThanZero) {
  controller.keys["TB1T"] = floatKey(31.25F);
  controller.keys["TB1T"].readResult = 1;
  EXPECT_EQ(reader->readFloat("TB1T"), std::nullopt);
  controller.keys["TB1T"].readResult = 0;
  EXPECT_EQ(reader->readFloat("TB1T"), 31.25);
}

TEST_F(SMCReader, BelievesNoAnswerOfAnotherSize) {
  controller.keys["TB1T"] = floatKey(31.25F);
  (void)reader->readFloat("TB1T");
  for (const std::size_t size : {std::size_t{0}, std::size_t{79}, std::size_t{81}}) {
    controller.keys["TB1T"].outputSize = size;
    EXPECT_EQ(reader->readFloat("TB1T"), std::nullopt);
  }
  controller.keys["TB1T"].outputSize = 80;
  EXPECT_EQ(reader->readFloat("TB1T"), 31.25);
}

TEST_F(SMCReader, TakesAKeyDescribedInAnotherSizeForMissing) {
  controller.keys["TB1T"] = floatKey(31.25F);
  controller.keys["TB1T"].outputSize = 79;
  EXPECT_EQ(reader->readFloat("TB1T"), std::nullopt);
  controller.keys["TB1T"].outputSize = 80;
  EXPECT_EQ(reader->readFloat("TB1T"), std::nullopt);
  EXPECT_EQ(controller.calls.size(), 1U);
}

TEST_F(SMCReader, TakesAKeyOfNoBytesOrMoreThanThirtyTwoForMissing) {
  for (const std::uint32_t size : {0U, 33U, 0xFFFFFFFFU}) {
    test::ScriptedSMC other;
    other.keys["TB1T"] = floatKey(31.25F);
    other.keys["TB1T"].size = size;
    const auto otherReader = vantora::SMCReader::open(other.opener());
    EXPECT_EQ(otherReader->readFloat("TB1T"), std::nullopt);
    EXPECT_EQ(otherReader->readFloat("TB1T"), std::nullopt);
    EXPECT_EQ(other.calls.size(), 1U);
  }
}

TEST_F(SMCReader, ReadsAKeyOfThirtyTwoBytesThoughItDecodesNoneOfIt) {
  controller.keys["RPlt"] = SMCKey{32, "ch8*", std::vector<std::uint8_t>(32, 'a')};
  EXPECT_EQ(reader->readFloat("RPlt"), std::nullopt);
  EXPECT_EQ(reader->readFloat("RPlt"), std::nullopt);
  EXPECT_EQ(controller.count("RPlt", reading), 2);
}

TEST_F(SMCReader, MakesNoCallForAKeyThatIsNotFourBytesLong) {
  for (const char* key : {"", "TB1", "TB1T0", "Tpéa0"}) {
    EXPECT_EQ(reader->readFloat(key), std::nullopt);
    EXPECT_EQ(reader->readUInt8(key), std::nullopt);
  }
  EXPECT_TRUE(controller.calls.empty());
}

TEST_F(SMCReader, RefusesFloatsThatAreNotFinite) {
  controller.keys["TB1T"] = floatKey(std::numeric_limits<float>::quiet_NaN());
  controller.keys["TB2T"] = floatKey(std::numeric_limits<float>::infinity());
  controller.keys["TB3T"] = floatKey(-std::numeric_limits<float>::infinity());
  EXPECT_EQ(reader->readFloat("TB1T"), std::nullopt);
  EXPECT_EQ(reader->readFloat("TB2T"), std::nullopt);
  EXPECT_EQ(reader->readFloat("TB3T"), std::nullopt);
}

TEST_F(SMCReader, RefusesAByteAsFloatAndAFloatAsByte) {
  controller.keys["FNum"] = uint8Key(2);
  controller.keys["TB1T"] = floatKey(31.25F);
  EXPECT_EQ(reader->readFloat("FNum"), std::nullopt);
  EXPECT_EQ(reader->readUInt8("TB1T"), std::nullopt);
}

TEST_F(SMCReader, RefusesTheRightTypeInTheWrongSizeAndTheOtherWayRound) {
  controller.keys["aaaa"] = SMCKey{8, "flt ", std::vector<std::uint8_t>(8)};
  controller.keys["bbbb"] = SMCKey{4, "ui32", std::vector<std::uint8_t>(4)};
  controller.keys["cccc"] = SMCKey{2, "ui8 ", std::vector<std::uint8_t>(2)};
  controller.keys["dddd"] = SMCKey{1, "flag", std::vector<std::uint8_t>(1)};
  EXPECT_EQ(reader->readFloat("aaaa"), std::nullopt);
  EXPECT_EQ(reader->readFloat("bbbb"), std::nullopt);
  EXPECT_EQ(reader->readUInt8("cccc"), std::nullopt);
  EXPECT_EQ(reader->readUInt8("dddd"), std::nullopt);
}

}  // namespace
}  // namespace vantora
