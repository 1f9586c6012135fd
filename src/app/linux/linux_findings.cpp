// SPDX-License-Identifier: MIT
#include "app/linux/linux_findings.hpp"

#include <sys/utsname.h>

#include <algorithm>
#include <chrono>
#include <future>
#include <system_error>
#include <utility>
#include <vector>

#include "platform/linux/battery/linux_battery_source.hpp"
#include "platform/linux/battery/supply_inventory.hpp"
#include "platform/linux/cpu/proc_stat.hpp"
#include "platform/linux/network/rtnetlink_source.hpp"
#include "platform/linux/sensors/sensor_inventory.hpp"
#include "platform/linux/sysfs/sysfs.hpp"
#include "platform/linux/text/font_report.hpp"
#include "process/run_program.hpp"
#include "sampling/cpu_collector.hpp"
#include "sampling/link_reports.hpp"
#include "sampling/network_collector.hpp"
#include "settings/file_io.hpp"

namespace vantora {
namespace {

constexpr MetricSet sensorMetrics{
    MetricID::batteryTemperature, MetricID::cpuTemperature, MetricID::fan1Percent,
    MetricID::fan2Percent,        MetricID::fan1RPM,        MetricID::fan2RPM};
constexpr const char* silentDriver = "um driver não respondeu em 3 s";

bool isSet(const EnvironmentLookup& environment, const char* name) {
  return !environment(name).value_or("").empty();
}

/// The answer of a task that was given to a thread, if it comes in time.
template <typename Answer>
class Later {
 public:
  template <typename Task>
  Later(WorkThread& thread, Task task) {
    auto promise = std::make_shared<std::promise<Answer>>();
    if (thread.post([promise, task = std::move(task)]() mutable { promise->set_value(task()); })) {
      answer_ = promise->get_future();
    }
  }
  [[nodiscard]] std::optional<Answer> by(std::chrono::steady_clock::time_point deadline) {
    return answer_.valid() && answer_.wait_until(deadline) == std::future_status::ready
               ? std::optional(answer_.get())
               : std::nullopt;
  }

 private:
  std::future<Answer> answer_;
};

struct Supplies {
  BatteryReadings readings;
  std::vector<DeviceReport> devices;
};
struct Sensors {
  SampleTable readings;
  std::vector<DeviceReport> devices;
};
struct Flow {
  MetricSample cpu;
  NetworkRates rates;
  std::vector<DeviceReport> devices;
};

/// What needs two readings, with the sources that remember the first.
struct FlowSources {
  explicit FlowSources(const Clock& clock)
      : cpuCollector(ticks, clock), networkCollector(network, clock) {}
  ProcStatTicks ticks;
  RtnetlinkSource network;
  CPUCollector cpuCollector;
  NetworkCollector networkCollector;

  Flow read(const std::optional<std::string>& preferred) {
    return {cpuCollector.sample(), networkCollector.sample(preferred), {}};
  }
};

std::vector<DeviceReport> linksWithDrivers(RtnetlinkSource& source,
                                           const std::optional<std::string>& preferred,
                                           const std::optional<std::string>& read) {
  std::vector<DeviceReport> links = linkReports(source, preferred, read);
  for (DeviceReport& link : links) {
    if (link.name.find('/') == std::string::npos) {
      const UniqueFd folder = Sysfs::openDirectory("/sys/class/net/" + link.name);
      link.driver = folder ? Sysfs::driverName(folder.get()) : std::string();
    }
  }
  return links;
}

void setAll(MetricSnapshot& snapshot, MetricSet metrics, const MetricSample& sample) {
  for (const MetricID metric : metrics) {
    snapshot.samples.set(metric, sample);
  }
}

}  // namespace

std::string sessionKind(const EnvironmentLookup& environment) {
  const std::string type = environment("XDG_SESSION_TYPE").value_or("");
  if (type == "wayland" || isSet(environment, "WAYLAND_DISPLAY")) {
    return isSet(environment, "DISPLAY") ? "Wayland, com X11" : "Wayland";
  }
  if (type == "x11" || isSet(environment, "DISPLAY")) {
    return "X11";
  }
  return isSet(environment, "SSH_CONNECTION") ? "terminal remoto, sem tela" : "terminal, sem tela";
}

std::string systemText(const std::filesystem::path& osRelease) {
  constexpr std::string_view key = "PRETTY_NAME=";
  constexpr std::size_t maxFile = 65'536;
  std::string text;
  const auto file = FileIO::readFile(osRelease, maxFile);
  const std::size_t start = file ? ("\n" + *file).find("\n" + std::string(key)) : std::string::npos;
  if (start != std::string::npos) {
    text = file->substr(start + key.size());
    text.resize(std::min(text.size(), text.find('\n')));
    std::erase(text, '"');
  }
  utsname kernel{};
  if (::uname(&kernel) == 0) {
    // Not its nodename, which is the host's.
    text.append(text.empty() ? "" : "; ").append(kernel.sysname).append(" ");
    text.append(kernel.release).append(" ").append(kernel.machine);
  }
  return text;
}

void findTypefaces(const std::string& program, Diagnosis& diagnosis) {
  constexpr std::chrono::seconds timeout{10};  // fontconfig may have to build its cache
  std::error_code error;
  if (!std::filesystem::exists(program, error)) {
    diagnosis.typefaceWhy = "o vantora-glyphs, que a desenha, não está instalado";
    return;
  }
  const auto output = runProgram({program, describeFontsOption}, timeout);
  const auto report = output ? parseFontReport(*output) : std::nullopt;
  if (!report) {
    diagnosis.typefaceWhy = "o vantora-glyphs, que a desenha, não respondeu";
    return;
  }
  diagnosis.typeface = report->text;
  diagnosis.monospaced = report->monospaced;
  if (report->text.empty()) {
    diagnosis.typefaceWhy = "nenhuma fonte instalada serve; os caracteres são quadrados vazios";
  }
  diagnosis.libraries.emplace_back("FreeType", report->freetype);
  diagnosis.libraries.emplace_back("fontconfig", report->fontconfig);
}

struct DeviceLook::Work {
  Work(Threads threads, const Clock& clock, std::optional<std::string> preferred)
      : links(threads.links),
        link(std::move(preferred)),
        flow(std::make_shared<FlowSources>(clock)),
        supplies(threads.battery,
                 [&clock] {
                   return Supplies{LinuxBatterySource(clock).read(), supplyInventory()};
                 }),
        sensors(threads.sensors,
                [&clock] {
                  LinuxSensorSource source(clock);
                  return Sensors{source.sample(sensorMetrics),
                                 sensorInventory(LinuxSensorSource::Roots())};
                }),
        first(threads.links, [sources = flow, link = link] { return sources->read(link); }) {}

  const std::chrono::steady_clock::time_point begun = std::chrono::steady_clock::now();
  WorkThread& links;
  const std::optional<std::string> link;
  const std::shared_ptr<FlowSources> flow;
  Later<Supplies> supplies;
  Later<Sensors> sensors;
  Later<Flow> first;
};

DeviceLook::DeviceLook(Threads threads, const Clock& clock,
                       std::optional<std::string> preferredLink)
    : work_(std::make_unique<Work>(threads, clock, std::move(preferredLink))) {}

DeviceLook::~DeviceLook() = default;

MetricSnapshot DeviceLook::finish(Diagnosis& diagnosis) {
  using std::chrono::steady_clock;
  const auto deadline = work_->begun + std::chrono::duration_cast<steady_clock::duration>(timeout);
  MetricSnapshot snapshot;
  Later<Flow> second(work_->links, [sources = work_->flow, link = work_->link] {
    Flow flow = sources->read(link);
    flow.devices = linksWithDrivers(sources->network, link, flow.rates.name);
    return flow;
  });
  if (auto flow = second.by(deadline)) {
    snapshot.samples.set(MetricID::cpuUsage, flow->cpu);
    snapshot.samples.set(MetricID::upload, flow->rates.upload);
    snapshot.samples.set(MetricID::download, flow->rates.download);
    snapshot.networkName = flow->rates.name;
    diagnosis.links.devices = std::move(flow->devices);
  } else {
    diagnosis.links.why = silentDriver;
    setAll(snapshot, {MetricID::cpuUsage, MetricID::upload, MetricID::download},
           MetricSample::unavailable(silentDriver));
  }
  if (auto supplies = work_->supplies.by(deadline)) {
    snapshot.samples.set(MetricID::batteryPercent, supplies->readings.percentage);
    snapshot.samples.set(MetricID::batteryTime, supplies->readings.duration);
    snapshot.samples.set(MetricID::adapterWatts, supplies->readings.adapterWatts);
    snapshot.batteryOnAC = supplies->readings.onAC;
    snapshot.batteryCharging = supplies->readings.charging;
    diagnosis.supplies.devices = std::move(supplies->devices);
  } else {
    diagnosis.supplies.why = silentDriver;
    setAll(snapshot, {MetricID::batteryPercent, MetricID::batteryTime, MetricID::adapterWatts},
           MetricSample::unavailable(silentDriver));
  }
  if (auto sensors = work_->sensors.by(deadline)) {
    for (const MetricID metric : sensors->readings.metrics()) {
      snapshot.samples.set(metric, *sensors->readings.find(metric));
    }
    diagnosis.sensors.devices = std::move(sensors->devices);
  } else {
    diagnosis.sensors.why = silentDriver;
    setAll(snapshot, sensorMetrics, MetricSample::unavailable(silentDriver));
  }
  const auto explain = [](DeviceList& list, const char* none) {
    if (list.devices.empty() && list.why.empty()) {
      list.why = none;
    }
  };
  explain(diagnosis.sensors, "o kernel não mostra sensores nesta máquina");
  explain(diagnosis.supplies, "o kernel não mostra bateria nem adaptador nesta máquina");
  explain(diagnosis.links, "o kernel não mostra interfaces de rede");
  return snapshot;
}

}  // namespace vantora
