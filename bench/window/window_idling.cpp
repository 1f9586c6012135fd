// SPDX-License-Identifier: MIT
//
// window_idling VANTORA-SETTINGS [SECONDS]
//
// Measures what the open settings window costs while nobody touches it, at one update a second:
// the processor time of its process, in percent of one core, over SECONDS (20). Exits with 1
// above one percent.
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <ctime>
#include <string>
#include <thread>
#include <vector>

#include "settings/conversation/settings_protocol.hpp"
#include "window_program.hpp"

namespace {

using vantora::WindowField;
using vantora::bench::Program;
using vantora::bench::stop;
using Seconds = std::chrono::duration<double>;
constexpr double limitPercent = 1;

Seconds processorTime(pid_t process) {
  clockid_t clock{};
  timespec time{};
  if (::clock_getcpuclockid(process, &clock) != 0 || ::clock_gettime(clock, &time) != 0) {
    stop("the window has ended");
  }
  return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

// The pictures of five modules, in the bar and at twice its size, and the readings beside the
// pickers: all of them others at each step.
vantora::WindowState stateAt(std::uint64_t step) {
  static const vantora::WindowState first;
  vantora::WindowState state = first;
  state.networkName = "eth0";
  state.picture = {200, 1, 200, 22, {}, std::nullopt};
  const auto ink = static_cast<std::uint8_t>(step * 16);
  state.picture.alpha.assign(200 * 22, ink);
  state.picture.enlarged = {2, 400, 44, std::vector<std::uint8_t>(400 * 44, ink)};
  using vantora::MetricID;
  for (const MetricID metric : {MetricID::cpuUsage, MetricID::cpuTemperature, MetricID::upload,
                                MetricID::download, MetricID::batteryPercent}) {
    state.readings.push_back(
        {metric, std::to_string(step % 100), vantora::Quality::valid, "fonte", {}, {}});
  }
  return state;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    stop("usage: window_idling VANTORA-SETTINGS [SECONDS]");
  }
  const int seconds = argc > 2 ? std::max(1, std::atoi(argv[2])) : 20;
  const Program program(argv[1]);
  while (!program.hasSpoken()) {
  }
  using vantora::SettingsProtocol::stateLine;
  std::uint64_t sequence = 1;
  program.tell(stateLine(stateAt(0), {sequence, 0, vantora::allWindowFields}));
  Seconds begin{0};
  constexpr int settling = 5;  // Opening is not idling.
  for (int second = 0; second < settling + seconds; ++second) {
    if (second == settling) {
      begin = processorTime(program.id());
    }
    std::this_thread::sleep_for(std::chrono::seconds(1));
    program.hear();
    ++sequence;
    program.tell(
        stateLine(stateAt(sequence), {sequence, 0, {WindowField::picture, WindowField::readings}}));
  }
  const double percent = (processorTime(program.id()) - begin).count() / seconds * 100;
  std::printf("%.2f %% of one core over %d s\n", percent, seconds);
  return percent <= limitPercent ? 0 : 1;
}
