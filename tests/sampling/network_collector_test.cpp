// SPDX-License-Identifier: MIT
#include "sampling/network_collector.hpp"

#include <gtest/gtest.h>

#include "support/fake_network_source.hpp"
#include "support/virtual_time.hpp"

namespace vantora {
namespace {

class NetworkCollectorTest : public testing::Test {
 protected:
  test::VirtualTime time_;
  test::FakeNetworkSource source_;
  NetworkCollector collector_{source_, time_};

  NetworkRates sample(const std::optional<std::string>& preferred = std::nullopt) {
    NetworkRates rates = collector_.sample(preferred);
    EXPECT_EQ(rates.upload.quality, rates.download.quality);
    EXPECT_EQ(rates.upload.source, rates.download.source);
    EXPECT_EQ(rates.upload.sampledAt, rates.download.sampledAt);
    return rates;
  }

  void expectUnavailable(const NetworkRates& rates, const std::string& source) {
    EXPECT_EQ(rates.upload, MetricSample::unavailable(source));
    EXPECT_EQ(rates.download, MetricSample::unavailable(source));
    EXPECT_EQ(rates.name, std::nullopt);
  }

  void expectWaiting(const NetworkRates& rates, const std::string& name, const std::string& why) {
    EXPECT_EQ(rates.upload, MetricSample::waiting(name + why));
    EXPECT_EQ(rates.download, MetricSample::waiting(name + why));
    EXPECT_EQ(rates.name, name);
  }

  static constexpr const char* first = " · primeira amostra de 64 bits";
  static constexpr const char* restarted = " · base reiniciada após pausa ou reset";
  static constexpr const char* noneChosen = "Interface selecionada indisponível";
  static constexpr const char* nonePhysical = "Sem interface física ativa";
  static constexpr const char* backingOff =
      "Contadores de rede indisponíveis; nova tentativa em até 10 s";
};

TEST_F(NetworkCollectorTest, WaitsOnTheFirstReading) {
  source_.add("en0");
  expectWaiting(sample(), "en0", first);
}

TEST_F(NetworkCollectorTest, TakesTheUploadFromSentBytesAndTheDownloadFromReceivedOnes) {
  source_.add("en0");
  source_.setCounters("en0", 1000, 50);
  (void)sample();
  time_.advance(Seconds{2});
  source_.setCounters("en0", 7000, 90);
  const NetworkRates rates = sample();
  EXPECT_EQ(rates.upload, MetricSample::valid(20.0, "en0 · NET_RT_IFLIST2 · bytes/s", time_.now()));
  EXPECT_EQ(rates.download,
            MetricSample::valid(3000.0, "en0 · NET_RT_IFLIST2 · bytes/s", time_.now()));
  EXPECT_EQ(rates.name, "en0");
}

TEST_F(NetworkCollectorTest, ReportsZeroForAQuietInterface) {
  source_.add("en0");
  (void)sample();
  time_.advance(Seconds{1});
  EXPECT_EQ(sample().upload.value, 0.0);
}

TEST_F(NetworkCollectorTest, CountsPastFourGigabytes) {
  source_.add("en0");
  source_.setCounters("en0", 0xffff'ffff, 0xffff'ffff);
  (void)sample();
  time_.advance(Seconds{1});
  source_.setCounters("en0", 0x1'0000'0009, 0x1'0000'0004);
  const NetworkRates rates = sample();
  EXPECT_EQ(rates.download.value, 10.0);
  EXPECT_EQ(rates.upload.value, 5.0);
}

// Choosing.

TEST_F(NetworkCollectorTest, ReadsTheChosenInterfaceWhetherPhysicalOrAddressedOrNot) {
  source_.add("en0");
  source_.add("utun3");
  source_.setPhysical("utun3", false);
  source_.setAddressed("utun3", false);
  source_.setPrimary("en0");
  expectWaiting(sample("utun3"), "utun3", first);
  EXPECT_EQ(source_.lookUps(), 0) << "a chosen interface needs neither routes nor addresses";
}

TEST_F(NetworkCollectorTest, SaysThatAChosenInterfaceIsUnavailableWhenItIsDown) {
  source_.add("en0");
  source_.add("en1");
  source_.setUp("en1", false);
  expectUnavailable(sample("en1"), noneChosen);
}

TEST_F(NetworkCollectorTest, SaysThatAChosenInterfaceIsUnavailableWhenItDoesNotExist) {
  source_.add("en0");
  expectUnavailable(sample("en7"), noneChosen);
}

TEST_F(NetworkCollectorTest, PassesOverAChosenInterfaceThatIsDownForANamesakeThatIsUp) {
  source_.add("en1");
  source_.setUp("en1", false);
  source_.add("en1");
  expectWaiting(sample("en1"), "en1", first);
}

TEST_F(NetworkCollectorTest, ChoosesByItselfWhenTheChosenNameIsEmpty) {
  source_.add("en0");
  expectWaiting(sample(""), "en0", first);
}

TEST_F(NetworkCollectorTest, PrefersThePrimaryInterface) {
  source_.add("en0");
  source_.add("en1");
  source_.setPrimary("en1");
  expectWaiting(sample(), "en1", first);
}

TEST_F(NetworkCollectorTest, TakesTheFirstPhysicalOneWhenThePrimaryIsATunnel) {
  source_.add("lo0");
  source_.setPhysical("lo0", false);
  source_.add("utun0");
  source_.setPhysical("utun0", false);
  source_.add("en0");
  source_.setUp("en0", false);
  source_.add("en1");
  source_.setAddressed("en1", false);
  source_.add("en2");
  source_.add("en3");
  source_.setPrimary("utun0");
  expectWaiting(sample(), "en2", first);
}

TEST_F(NetworkCollectorTest, PassesOverAPrimaryInterfaceThatIsDown) {
  source_.add("en0");
  source_.add("en1");
  source_.setUp("en1", false);
  source_.setPrimary("en1");
  expectWaiting(sample(), "en0", first);
}

TEST_F(NetworkCollectorTest, PassesOverAPrimaryInterfaceWithoutAnAddress) {
  source_.add("en0");
  source_.add("en1");
  source_.setAddressed("en1", false);
  source_.setPrimary("en1");
  expectWaiting(sample(), "en0", first);
}

TEST_F(NetworkCollectorTest, PassesOverAPrimaryInterfaceThatIsNotInTheTable) {
  source_.add("en0");
  source_.setPrimary("en9");
  expectWaiting(sample(), "en0", first);
}

TEST_F(NetworkCollectorTest, HasNoPhysicalInterfaceOnAMachineWithATunnelAndLoopbackOnly) {
  for (const char* name : {"lo0", "utun0"}) {
    source_.add(name);
    source_.setPhysical(name, false);
  }
  source_.setPrimary("utun0");
  expectUnavailable(sample(), nonePhysical);
}

TEST_F(NetworkCollectorTest, DoesNotChooseAnInterfaceWithoutAnAddressByItself) {
  source_.add("en0");
  source_.setAddressed("en0", false);
  expectUnavailable(sample(), nonePhysical);
}

TEST_F(NetworkCollectorTest, HasNoPhysicalInterfaceInAnEmptyTable) {
  expectUnavailable(sample(), nonePhysical);
}

// Vanishing.

TEST_F(NetworkCollectorTest, TakesTheNextOneWhenTheFirstVanishesBeforeItsCountersAreRead) {
  source_.add("en0");
  source_.add("en1");
  source_.vanishBeforeCounters("en0");
  expectWaiting(sample(), "en1", first);
}

TEST_F(NetworkCollectorTest, TakesAnotherOneWhenThePrimaryVanishesBeforeItsCountersAreRead) {
  source_.add("en0");
  source_.add("en1");
  source_.setPrimary("en1");
  source_.vanishBeforeCounters("en1");
  expectWaiting(sample(), "en0", first);
}

TEST_F(NetworkCollectorTest, CountsAVanishedChosenInterfaceAsNotInTheTable) {
  source_.add("en0");
  source_.vanishBeforeCounters("en0");
  expectUnavailable(sample("en0"), noneChosen);
  source_.remove("en0");
  source_.add("en0");
  expectWaiting(sample("en0"), "en0", first);
}

TEST_F(NetworkCollectorTest, ForgetsItsBaseWhenNoInterfaceIsLeft) {
  source_.add("en0");
  (void)sample();
  source_.setUp("en0", false);
  time_.advance(Seconds{1});
  expectUnavailable(sample(), nonePhysical);
  source_.setUp("en0", true);
  time_.advance(Seconds{1});
  expectWaiting(sample(), "en0", first);
}

TEST_F(NetworkCollectorTest, ForgetsItsBaseWhenTheChosenInterfaceIsUnavailable) {
  source_.add("en0");
  (void)sample("en0");
  source_.setUp("en0", false);
  expectUnavailable(sample("en0"), noneChosen);
  source_.setUp("en0", true);
  time_.advance(Seconds{1});
  expectWaiting(sample("en0"), "en0", first);
}

// The base.

TEST_F(NetworkCollectorTest, WaitsOnceWhenTheInterfaceChanges) {
  source_.add("en0");
  source_.add("en1");
  source_.setPrimary("en0");
  (void)sample();
  source_.setPrimary("en1");
  time_.advance(Seconds{1});
  expectWaiting(sample(), "en1", first);
  time_.advance(Seconds{1});
  EXPECT_EQ(sample().upload.quality, Quality::valid);
}

TEST_F(NetworkCollectorTest, StillGivesARateAfterAGapOfThirtySeconds) {
  source_.add("en0");
  (void)sample();
  time_.advance(Seconds{30});
  source_.setCounters("en0", 60, 30);
  const NetworkRates rates = sample();
  EXPECT_EQ(rates.download.value, 2.0);
  EXPECT_EQ(rates.upload.value, 1.0);
}

TEST_F(NetworkCollectorTest, RestartsItsBaseAfterALongerGap) {
  source_.add("en0");
  (void)sample();
  time_.advance(Seconds{30.001});
  expectWaiting(sample(), "en0", restarted);
  time_.advance(Seconds{31});
  expectWaiting(sample(), "en0", restarted);
  time_.advance(Seconds{1});
  EXPECT_EQ(sample().upload.quality, Quality::valid);
}

TEST_F(NetworkCollectorTest, RestartsItsBaseWhenEitherCounterWentBackwards) {
  source_.add("en0");
  source_.setCounters("en0", 1000, 1000);
  (void)sample();
  time_.advance(Seconds{1});
  source_.setCounters("en0", 999, 2000);
  expectWaiting(sample(), "en0", restarted);
  time_.advance(Seconds{1});
  source_.setCounters("en0", 1999, 1999);
  expectWaiting(sample(), "en0", restarted);
  time_.advance(Seconds{1});
  source_.setCounters("en0", 2000, 2001);
  const NetworkRates rates = sample();
  EXPECT_EQ(rates.download.value, 1.0);
  EXPECT_EQ(rates.upload.value, 2.0);
}

TEST_F(NetworkCollectorTest, RestartsItsBaseWhenNoTimeElapsed) {
  source_.add("en0");
  (void)sample();
  expectWaiting(sample(), "en0", restarted);
}

// A modem that was unplugged and has come back counts from zero, and may have counted
// past the old value by the next reading.
TEST_F(NetworkCollectorTest, RestartsItsBaseWhenAnotherDeviceCameUnderTheSameName) {
  source_.add("en0");
  source_.setCounters("en0", 10, 10);
  (void)sample();
  source_.remove("en0");
  source_.add("en0");
  source_.setCounters("en0", 5000, 5000);
  time_.advance(Seconds{1});
  expectWaiting(sample(), "en0", restarted);
  time_.advance(Seconds{1});
  EXPECT_EQ(sample().upload.value, 0.0);
}

TEST_F(NetworkCollectorTest, IsAFirstReadingAgainAfterAReset) {
  source_.add("en0");
  (void)sample();
  collector_.reset();
  time_.advance(Seconds{1});
  expectWaiting(sample(), "en0", first);
}

// Failures.

TEST_F(NetworkCollectorTest, BacksOffForTenSecondsWhenTheTableCannotBeRead) {
  source_.add("en0");
  source_.failRead("sysctl NET_RT_IFLIST2 falhou");
  expectUnavailable(sample(), "sysctl NET_RT_IFLIST2 falhou");
  source_.recover();
  expectUnavailable(sample(), backingOff);
  time_.advance(Seconds{9.999});
  expectUnavailable(sample(), backingOff);
  EXPECT_EQ(source_.reads(), 1);
  time_.advance(Seconds{0.001});
  expectWaiting(sample(), "en0", first);
  EXPECT_EQ(source_.reads(), 2);
}

TEST_F(NetworkCollectorTest, BacksOffForTenSecondsWhenTheCountersCannotBeRead) {
  source_.add("en0");
  source_.failCounters("rtnetlink falhou");
  expectUnavailable(sample(), "rtnetlink falhou");
  source_.recover();
  time_.advance(Seconds{9.999});
  expectUnavailable(sample("en0"), backingOff);
  EXPECT_EQ(source_.reads(), 1);
  time_.advance(Seconds{0.001});
  expectWaiting(sample("en0"), "en0", first);
}

TEST_F(NetworkCollectorTest, FailsForAChosenInterfaceToo) {
  source_.add("en0");
  source_.failCounters("rtnetlink falhou");
  expectUnavailable(sample("en0"), "rtnetlink falhou");
}

TEST_F(NetworkCollectorTest, FailsForThePrimaryInterfaceWithoutTryingAnother) {
  source_.add("en0");
  source_.add("en1");
  source_.setPrimary("en1");
  source_.failCounters("rtnetlink falhou");
  expectUnavailable(sample(), "rtnetlink falhou");
  EXPECT_EQ(source_.counterReads(), 1);
}

TEST_F(NetworkCollectorTest, KeepsItsBaseOverAFailure) {
  source_.add("en0");
  (void)sample();
  time_.advance(Seconds{1});
  source_.failRead("sysctl NET_RT_IFLIST2 falhou");
  (void)sample();
  source_.recover();
  time_.advance(Seconds{10});
  source_.setCounters("en0", 11, 22);
  const NetworkRates rates = sample();
  EXPECT_EQ(rates.download.value, 1.0);
  EXPECT_EQ(rates.upload.value, 2.0);
}

TEST_F(NetworkCollectorTest, ReadsAtOnceAfterAResetDuringTheBackOff) {
  source_.add("en0");
  source_.failRead("sysctl NET_RT_IFLIST2 falhou");
  (void)sample();
  source_.recover();
  collector_.reset();
  expectWaiting(sample(), "en0", first);
}

TEST_F(NetworkCollectorTest, AsksForTheCountersOfOneInterfaceOnly) {
  source_.add("en0");
  source_.add("en1");
  source_.add("en2");
  source_.setPrimary("en2");
  (void)sample();
  EXPECT_EQ(source_.reads(), 1);
  EXPECT_EQ(source_.counterReads(), 1);
}

}  // namespace
}  // namespace vantora
