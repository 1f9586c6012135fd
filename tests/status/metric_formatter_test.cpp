// SPDX-License-Identifier: MIT
#include "status/metric_formatter.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <clocale>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "model/decimal.hpp"
#include "support/example_time.hpp"

namespace vantora {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
using test::exampleTime;

MetricSnapshot snapshotWith(MetricID metric, MetricSample sample) {
  MetricSnapshot snapshot;
  snapshot.samples.set(metric, std::move(sample));
  return snapshot;
}

std::string validText(MetricID metric, double value) {
  return MetricFormatter::text(
      metric, snapshotWith(metric, MetricSample::valid(value, "fonte", exampleTime)), exampleTime);
}

MetricSample sampleOf(Quality quality, std::optional<double> value) {
  return {value, quality, std::nullopt, "fonte"};
}

const std::vector sampledMetrics{
    MetricID::batteryPercent, MetricID::batteryTime,       MetricID::batteryTemperature,
    MetricID::upload,         MetricID::download,          MetricID::cpuUsage,
    MetricID::cpuTemperature, MetricID::fan1Percent,       MetricID::fan2Percent,
    MetricID::fan1RPM,        MetricID::fan2RPM,           MetricID::adapterWatts,
    MetricID::inputWatts,     MetricID::batteryChargeWatts};

TEST(MetricFormatter, ShowsNothingForAnEmptyLine) {
  EXPECT_EQ(MetricFormatter::text(MetricID::none, MetricSnapshot(), exampleTime), "");
  EXPECT_EQ(validText(MetricID::none, 7), "");
}

TEST(MetricFormatter, ShowsADashForWhatWasNotMeasured) {
  for (const MetricID metric : sampledMetrics) {
    EXPECT_EQ(MetricFormatter::text(metric, MetricSnapshot(), exampleTime), "—") << id(metric);
  }
}

TEST(MetricFormatter, ShowsADashForEveryQualityButValid) {
  for (const MetricID metric : sampledMetrics) {
    for (const Quality quality :
         {Quality::waiting, Quality::unavailable, Quality::temporaryError, Quality::stale}) {
      EXPECT_EQ(
          MetricFormatter::text(metric, snapshotWith(metric, sampleOf(quality, 50)), exampleTime),
          "—")
          << id(metric) << ' ' << rawText(quality);
    }
  }
}

TEST(MetricFormatter, ShowsADashForAValidReadingWithoutAFiniteValue) {
  for (const MetricID metric : sampledMetrics) {
    EXPECT_EQ(
        MetricFormatter::text(metric, snapshotWith(metric, sampleOf(Quality::valid, std::nullopt)),
                              exampleTime),
        "—")
        << id(metric);
    for (const double value : {infinity, -infinity, notANumber}) {
      EXPECT_EQ(validText(metric, value), "—") << id(metric) << ' ' << value;
    }
  }
}

TEST(MetricFormatter, RoundsPercentagesHalvesAwayFromZero) {
  for (const MetricID metric : {MetricID::batteryPercent, MetricID::cpuUsage, MetricID::fan1Percent,
                                MetricID::fan2Percent}) {
    EXPECT_EQ(validText(metric, 0), "0%");
    EXPECT_EQ(validText(metric, 0.49), "0%");
    EXPECT_EQ(validText(metric, 0.5), "1%");
    EXPECT_EQ(validText(metric, 1.5), "2%");
    EXPECT_EQ(validText(metric, 2.5), "3%");
    EXPECT_EQ(validText(metric, 87.5), "88%");
    EXPECT_EQ(validText(metric, 100), "100%");
  }
}

TEST(MetricFormatter, DoesNotClampPercentages) {
  EXPECT_EQ(validText(MetricID::batteryPercent, 101), "101%");
  EXPECT_EQ(validText(MetricID::cpuUsage, -3), "-3%");
}

TEST(MetricFormatter, WritesNoSignBeforeZero) {
  EXPECT_EQ(validText(MetricID::cpuUsage, -0.2), "0%");
  EXPECT_EQ(validText(MetricID::cpuTemperature, -0.0), "0°C");
}

TEST(MetricFormatter, ShowsTemperaturesInWholeDegreesCelsius) {
  for (const MetricID metric : {MetricID::batteryTemperature, MetricID::cpuTemperature}) {
    EXPECT_EQ(validText(metric, 41.4), "41\u00B0C");
    EXPECT_EQ(validText(metric, 41.5), "42\u00B0C");
    EXPECT_EQ(validText(metric, -12.5), "-13\u00B0C");
  }
}

TEST(MetricFormatter, ShowsFanSpeedsWithoutAUnit) {
  for (const MetricID metric : {MetricID::fan1RPM, MetricID::fan2RPM}) {
    EXPECT_EQ(validText(metric, 2399.6), "2400");
    EXPECT_EQ(validText(metric, 0), "0");
  }
}

TEST(MetricFormatter, CapsPowerStrictlyAboveTheLimit) {
  for (const MetricID metric :
       {MetricID::adapterWatts, MetricID::inputWatts, MetricID::batteryChargeWatts}) {
    EXPECT_EQ(validText(metric, 60), "60W");
    EXPECT_EQ(validText(metric, 9999.4), "9999W");
    EXPECT_EQ(validText(metric, 9999.5), "10000W");
    EXPECT_EQ(validText(metric, 9999.6), ">9999W");
    EXPECT_EQ(validText(metric, 12000), ">9999W");
  }
}

TEST(MetricFormatter, RoundsBatteryTimeUpToWholeMinutes) {
  EXPECT_EQ(validText(MetricID::batteryTime, 0), "0:00");
  EXPECT_EQ(validText(MetricID::batteryTime, 5), "0:05");
  EXPECT_EQ(validText(MetricID::batteryTime, 5.2), "0:06");
  EXPECT_EQ(validText(MetricID::batteryTime, 59), "0:59");
  EXPECT_EQ(validText(MetricID::batteryTime, 59.01), "1:00");
  EXPECT_EQ(validText(MetricID::batteryTime, 95), "1:35");
  EXPECT_EQ(validText(MetricID::batteryTime, 9999), "166:39");
}

TEST(MetricFormatter, ShowsACForBatteryTimeOnlyOnTheAdapterWithoutCharging) {
  for (const Quality quality : {Quality::waiting, Quality::unavailable, Quality::stale}) {
    MetricSnapshot snapshot = snapshotWith(MetricID::batteryTime, sampleOf(quality, std::nullopt));
    EXPECT_EQ(MetricFormatter::text(MetricID::batteryTime, snapshot, exampleTime), "—");
    snapshot.batteryOnAC = true;
    EXPECT_EQ(MetricFormatter::text(MetricID::batteryTime, snapshot, exampleTime), "AC");
    snapshot.batteryCharging = true;
    EXPECT_EQ(MetricFormatter::text(MetricID::batteryTime, snapshot, exampleTime), "—");
    snapshot.batteryOnAC = false;
    EXPECT_EQ(MetricFormatter::text(MetricID::batteryTime, snapshot, exampleTime), "—");
  }
}

TEST(MetricFormatter, ShowsAKnownBatteryTimeEvenOnTheAdapter) {
  MetricSnapshot snapshot =
      snapshotWith(MetricID::batteryTime, MetricSample::valid(95, "fonte", exampleTime));
  snapshot.batteryOnAC = true;
  EXPECT_EQ(MetricFormatter::text(MetricID::batteryTime, snapshot, exampleTime), "1:35");
}

TEST(MetricFormatter, ShowsACForNoOtherMetric) {
  MetricSnapshot snapshot;
  snapshot.batteryOnAC = true;
  for (const MetricID metric : sampledMetrics) {
    if (metric != MetricID::batteryTime) {
      EXPECT_EQ(MetricFormatter::text(metric, snapshot, exampleTime), "—") << id(metric);
    }
  }
}

TEST(MetricFormatter, NeverCrashesOnAbsurdValues) {
  EXPECT_EQ(validText(MetricID::fan1RPM, 1e300), "—");
  EXPECT_EQ(validText(MetricID::fan1RPM, 9e18), "9000000000000000000");
  EXPECT_EQ(validText(MetricID::batteryTime, 1e300), "—");
  EXPECT_EQ(validText(MetricID::batteryTime, 9e18), "150000000000000000:00");
  EXPECT_EQ(validText(MetricID::batteryTime, -5), "—");
  EXPECT_EQ(validText(MetricID::adapterWatts, -1e300), "—");
}

TEST(MetricFormatter, ShowsNetworkMetricsAsCompactRates) {
  EXPECT_EQ(validText(MetricID::upload, 750'000), "0,75M");
  EXPECT_EQ(validText(MetricID::download, 125'400'000), "125M");
}

TEST(MetricFormatter, ShowsRatesBelowAMegabyteWithTwoDecimals) {
  EXPECT_EQ(MetricFormatter::compactRate(0), "0,00M");
  EXPECT_EQ(MetricFormatter::compactRate(-0.0), "0,00M");
  EXPECT_EQ(MetricFormatter::compactRate(4'999), "0,00M");
  EXPECT_EQ(MetricFormatter::compactRate(5'001), "0,01M");
  EXPECT_EQ(MetricFormatter::compactRate(750'000), "0,75M");
  EXPECT_EQ(MetricFormatter::compactRate(984'999), "0,98M");
}

TEST(MetricFormatter, RoundsHundredthsOfAMegabyteByTheExactBinaryValue) {
  const auto expectPrinted = [](double megabytes) {
    // The quotient that is formatted, of a rate in bytes.
    const double rate = megabytes * 1e6;
    EXPECT_EQ(MetricFormatter::compactRate(rate),
              fixedDecimal(std::min(rate / 1e6, 0.99), 2, ',') + "M")
        << std::hexfloat << megabytes;
  };
  for (int step = 0; step < 20'000; ++step) {
    const double value = step / 20'000.0;
    for (const double each : {value, std::nextafter(value, 0.0), std::nextafter(value, 1.0)}) {
      expectPrinted(each);
    }
  }
  // Ties that are exact in binary: to the even digit.
  EXPECT_EQ(MetricFormatter::compactRate(125'000), "0,12M");
  EXPECT_EQ(MetricFormatter::compactRate(375'000), "0,38M");
}

TEST(MetricFormatter, CapsRatesJustBelowAMegabyte) {
  for (const double rate : {989'999.0, 990'000.0, 994'999.0, 995'000.0, 999'999.0, 999'999.999}) {
    EXPECT_EQ(MetricFormatter::compactRate(rate), "0,99M") << rate;
  }
}

TEST(MetricFormatter, ShowsRatesFromAMegabyteInWholeMegabytes) {
  EXPECT_EQ(MetricFormatter::compactRate(1'000'000), "1M");
  EXPECT_EQ(MetricFormatter::compactRate(1'499'999), "1M");
  EXPECT_EQ(MetricFormatter::compactRate(1'500'000), "2M");
  EXPECT_EQ(MetricFormatter::compactRate(2'500'000), "3M");
  EXPECT_EQ(MetricFormatter::compactRate(125'400'000), "125M");
  EXPECT_EQ(MetricFormatter::compactRate(999'499'999), "999M");
}

TEST(MetricFormatter, CapsRatesAtTheirWidestText) {
  EXPECT_EQ(MetricFormatter::compactRate(999'500'000), ">999M");
  EXPECT_EQ(MetricFormatter::compactRate(1e30), ">999M");
}

TEST(MetricFormatter, ShowsADashForARateThatIsNone) {
  for (const double rate : {infinity, -infinity, notANumber, -1.0, -1e-300}) {
    EXPECT_EQ(MetricFormatter::compactRate(rate), "—") << rate;
  }
}

TEST(MetricFormatter, ShowsTheCodexQuotaOfTheSnapshot) {
  MetricSnapshot snapshot;
  EXPECT_EQ(MetricFormatter::text(MetricID::codexWeeklyPercent, snapshot, exampleTime), "--");
  EXPECT_EQ(MetricFormatter::text(MetricID::codexWeeklyReset, snapshot, exampleTime), "OFF");
  snapshot.codex.status = CodexQuotaStatus::ready;
  snapshot.codex.usedPercent = 12.97;
  snapshot.codex.lastSuccess = exampleTime;
  snapshot.codex.resetAt = exampleTime + std::chrono::minutes{61};
  EXPECT_EQ(MetricFormatter::text(MetricID::codexWeeklyPercent, snapshot, exampleTime), "87%");
  EXPECT_EQ(MetricFormatter::text(MetricID::codexWeeklyReset, snapshot, exampleTime), "1h1m");
  // The instant that is handed in decides, not the machine's clock.
  EXPECT_EQ(MetricFormatter::text(MetricID::codexWeeklyReset, snapshot,
                                  exampleTime + std::chrono::minutes{2}),
            "59m");
}

TEST(MetricFormatter, ShowsTheClaudeQuotaOfTheSnapshot) {
  MetricSnapshot snapshot;
  EXPECT_EQ(MetricFormatter::text(MetricID::claudeWeeklyPercent, snapshot, exampleTime), "--");
  EXPECT_EQ(MetricFormatter::text(MetricID::claudeSessionPercent, snapshot, exampleTime), "OFF");
  snapshot.claude.status = ClaudeQuotaStatus::stale;
  snapshot.claude.weeklyUsed = 37.5;
  snapshot.claude.sessionUsed = 99.6;
  snapshot.claude.lastSuccess = exampleTime;
  EXPECT_EQ(MetricFormatter::text(MetricID::claudeWeeklyPercent, snapshot, exampleTime), "62%*");
  EXPECT_EQ(MetricFormatter::text(MetricID::claudeSessionPercent, snapshot, exampleTime), "<1%*");
  EXPECT_EQ(MetricFormatter::text(MetricID::claudeSessionPercent, snapshot,
                                  exampleTime + std::chrono::minutes{30}),
            "--");
}

TEST(MetricFormatter, TakesNoQuotaFromTheSamples) {
  for (const MetricID metric : {MetricID::codexWeeklyPercent, MetricID::claudeWeeklyPercent}) {
    EXPECT_EQ(validText(metric, 42), "--") << id(metric);
  }
}

TEST(MetricFormatter, FollowsNoLocale) {
  const std::string before = std::setlocale(LC_ALL, nullptr);
  for (const char* locale : {"pt_BR.UTF-8", "de_DE.UTF-8", "C.UTF-8"}) {
    std::setlocale(LC_ALL, locale);  // Which of them the machine has makes no difference.
    EXPECT_EQ(MetricFormatter::compactRate(750'000), "0,75M");
    EXPECT_EQ(validText(MetricID::fan1RPM, 12345), "12345");
  }
  std::setlocale(LC_ALL, before.c_str());
}

TEST(MetricFormatter, IsNeverWiderThanTheReservedTextInPhysicalRanges) {
  const auto characters = [](std::string_view text) {
    std::size_t count = 0;
    for (const char byte : text) {
      count += (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U ? 1U : 0U;
    }
    return count;
  };
  const std::array<std::pair<MetricID, double>, 6> widest{{{MetricID::batteryPercent, 100},
                                                           {MetricID::batteryTime, 9999},
                                                           {MetricID::cpuTemperature, 125},
                                                           {MetricID::upload, 994'999},
                                                           {MetricID::fan1RPM, 12'000},
                                                           {MetricID::adapterWatts, 10'500}}};
  for (const auto& [metric, value] : widest) {
    EXPECT_LE(characters(validText(metric, value)), characters(reservedText(metric))) << id(metric);
  }
}

}  // namespace
}  // namespace vantora
