// SPDX-License-Identifier: MIT
#include "app/linux/linux_findings.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/utsname.h>

#include <future>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "runtime/system_clock.hpp"
#include "support/temporary_folder.hpp"

namespace vantora {
namespace {

EnvironmentLookup environment(std::map<std::string, std::string> values) {
  return [values = std::move(values)](const char* name) -> std::optional<std::string> {
    const auto found = values.find(name);
    return found != values.end() ? std::optional(found->second) : std::nullopt;
  };
}

TEST(LinuxFindings, NameTheKindOfSession) {
  EXPECT_EQ(sessionKind(environment({{"XDG_SESSION_TYPE", "wayland"}})), "Wayland");
  EXPECT_EQ(sessionKind(environment({{"WAYLAND_DISPLAY", "w"}, {"DISPLAY", ":0"}})),
            "Wayland, com X11");
  EXPECT_EQ(sessionKind(environment({{"DISPLAY", ":0"}})), "X11");
  EXPECT_EQ(sessionKind(environment({{"XDG_SESSION_TYPE", "tty"}, {"DISPLAY", ""}})),
            "terminal, sem tela");
  EXPECT_EQ(sessionKind(environment({{"SSH_CONNECTION", "10.0.0.1 5 10.0.0.2 22"}})),
            "terminal remoto, sem tela");
}

TEST(LinuxFindings, NameTheSystemAndNotTheHost) {
  const test::TemporaryFolder folder;
  test::writeBytes(folder / "os-release",
                   "NAME=x\nPRETTY_NAME=\"Debian GNU/Linux 12\"\nID=debian\n");
  utsname kernel{};
  ASSERT_EQ(::uname(&kernel), 0);
  const std::string rest =
      std::string(kernel.sysname) + ' ' + kernel.release + ' ' + kernel.machine;
  EXPECT_EQ(systemText(folder / "os-release"), "Debian GNU/Linux 12; " + rest);
  EXPECT_EQ(systemText(folder / "none"), rest);
}

TEST(LinuxFindings, SayWhyNoTypefaceIsKnown) {
  Diagnosis diagnosis;
  findTypefaces("/no/such/program", diagnosis);
  EXPECT_THAT(diagnosis.typefaceWhy, testing::HasSubstr("não está instalado"));
  Diagnosis silent;
  findTypefaces("/bin/true", silent);
  EXPECT_THAT(silent.typefaceWhy, testing::HasSubstr("não respondeu"));
}

// Stands in for a driver that never answers: the thread that would read it is busy.
TEST(LinuxFindings, DoNotWaitForADriverThatHangs) {
  const SystemClock clock;
  WorkThread links("t.links");
  WorkThread battery("t.battery");
  WorkThread sensors("t.sensors");
  std::promise<void> release;
  ASSERT_TRUE(sensors.post([released = release.get_future().share()] { released.wait(); }));
  Diagnosis diagnosis;
  DeviceLook look({links, battery, sensors}, clock, std::nullopt);
  const MetricSnapshot snapshot = look.finish(diagnosis);
  release.set_value();
  EXPECT_EQ(diagnosis.sensors.why, "um driver não respondeu em 3 s");
  EXPECT_EQ(snapshot[MetricID::cpuTemperature].source, "um driver não respondeu em 3 s");
  EXPECT_NE(snapshot[MetricID::batteryPercent].source, "um driver não respondeu em 3 s");
  EXPECT_FALSE(diagnosis.links.devices.empty()) << "the others are there";
}

}  // namespace
}  // namespace vantora
