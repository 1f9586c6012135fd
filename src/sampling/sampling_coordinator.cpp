// SPDX-License-Identifier: MIT
#include "sampling/sampling_coordinator.hpp"

#include <cassert>
#include <utility>

namespace vantora {
namespace {

constexpr Seconds batteryInterval{30};
constexpr Seconds timerLeeway{0.1};
constexpr FamilySet periodicFamilies{MetricFamily::cpu, MetricFamily::network,
                                     MetricFamily::sensors};

}  // namespace

std::shared_ptr<SamplingCoordinator> SamplingCoordinator::create(TaskQueue& samplingQueue,
                                                                 TaskQueue& mainQueue,
                                                                 const Clock& clock,
                                                                 SamplingSources sources) {
  return std::make_shared<SamplingCoordinator>(Token{}, samplingQueue, mainQueue, clock,
                                               std::move(sources));
}

SamplingCoordinator::SamplingCoordinator(Token /*token*/, TaskQueue& samplingQueue,
                                         TaskQueue& mainQueue, const Clock& clock,
                                         SamplingSources sources)
    : queue_(samplingQueue),
      main_(mainQueue),
      clock_(clock),
      sources_(std::move(sources)),
      cpu_(*sources_.ticks, clock),
      network_(*sources_.network, clock),
      demand_(configuration_.demand()),
      families_(configuration_.families()) {
  assert(sources_.battery != nullptr && sources_.sensors != nullptr);
}

void SamplingCoordinator::configure(AppConfiguration configuration) {
  const std::uint64_t call = ++configureCalls_;
  queue_.post(
      [self = shared_from_this(), call, configuration = std::move(configuration)]() mutable {
        self->appliedCall_ = call;
        self->reconfigure(std::move(configuration));
      });
}

void SamplingCoordinator::refreshBattery() {
  // Also while sleeping: a power source that changes on the way to sleep is still shown.
  queue_.post([self = shared_from_this()] {
    if (!self->configuration_.paused && self->families_.contains(MetricFamily::battery)) {
      self->beginPass(Reason::change);
    }
  });
}

void SamplingCoordinator::listLinks(std::function<void(std::vector<NetworkLink>)> done) {
  queue_.post([self = shared_from_this(), done = std::move(done)]() mutable {
    self->main_.post(
        [done = std::move(done), links = self->readLinks()]() mutable { done(std::move(links)); });
  });
}

void SamplingCoordinator::prepareForSleep(std::function<void()> whenStopped) {
  queue_.post([self = shared_from_this(), whenStopped = std::move(whenStopped)] {
    self->isSleeping_ = true;
    self->timer_.reset();
    self->resetRates();
    self->sources_.sensors->reset();
    if (whenStopped) {
      whenStopped();
    }
  });
}

void SamplingCoordinator::resetAfterWake() {
  queue_.post([self = shared_from_this()] {
    self->isSleeping_ = false;
    self->resetRates();
    self->batteryLastRead_ = Seconds{0};
    self->sources_.sensors->reset();
    self->main_.post([self, applied = self->appliedCall_, configuration = self->configuration_] {
      // A configuration that was passed meanwhile starts sampling itself, and must not be
      // undone by this older one.
      if (self->configureCalls_ == applied) {
        self->configure(configuration);
      }
    });
  });
}

bool SamplingCoordinator::startsTimer(const AppConfiguration& configuration) {
  return !configuration.paused && configuration.families().intersects(periodicFamilies);
}

void SamplingCoordinator::reconfigure(AppConfiguration configuration) {
  const AppConfiguration old = std::exchange(configuration_, std::move(configuration));
  const FamilySet oldFamilies = std::exchange(families_, configuration_.families());
  demand_ = configuration_.demand();

  if (old.intervalSeconds != configuration_.intervalSeconds ||
      old.paused != configuration_.paused || oldFamilies != families_) {
    resetRates();
  }
  if (old.networkInterface != configuration_.networkInterface) {
    network_.reset();
  }
  const bool isActive = !configuration_.paused && !isSleeping_;
  if (isActive) {
    sources_.sensors->configure(demand_);
  } else {
    sources_.sensors->reset();
  }
  timer_.reset();

  for (const MetricID metric : snapshot_.samples.metrics()) {
    if (!demand_.contains(metric)) {
      snapshot_.samples.erase(metric);
    } else if (configuration_.paused) {
      MetricSample sample = *snapshot_.samples.find(metric);
      sample.quality = Quality::stale;
      snapshot_.samples.set(metric, std::move(sample));
    }
  }

  if (!isActive || demand_.empty()) {
    publish(Reason::change);
    return;
  }
  beginPass(Reason::change);
  if (startsTimer(configuration_)) {
    startTimer();
  }
}

void SamplingCoordinator::startTimer() {
  timer_ = queue_.runEvery(Seconds{configuration_.intervalSeconds}, timerLeeway,
                           [weak = weak_from_this()] {
                             if (const auto self = weak.lock()) {
                               self->beginPass(Reason::tick);
                             }
                           });
}

// Battery and sensors first, where their drivers take time; sample() then finds the answers.
void SamplingCoordinator::beginPass(Reason reason) {
  const Seconds now = clock_.uptime();
  const bool isDue = reason == Reason::change || now - batteryLastRead_ >= batteryInterval;
  if (!isDue || !families_.contains(MetricFamily::battery)) {
    refreshSensors(reason, false);
    return;
  }
  batteryLastRead_ = now;
  sources_.battery->refresh([weak = weak_from_this(), reason] {
    if (const auto self = weak.lock()) {
      self->refreshSensors(reason, true);
    }
  });
}

void SamplingCoordinator::refreshSensors(Reason reason, bool readsBattery) {
  if (!families_.contains(MetricFamily::sensors)) {
    sample(reason, readsBattery);
    return;
  }
  sources_.sensors->refresh(demand_, [weak = weak_from_this(), reason, readsBattery] {
    if (const auto self = weak.lock()) {
      self->sample(reason, readsBattery);
    }
  });
}

void SamplingCoordinator::sample(Reason reason, bool readsBattery) {
  if (demand_.contains(MetricID::cpuUsage)) {
    snapshot_.samples.set(MetricID::cpuUsage, cpu_.sample());
  }
  sampleNetwork(demand_);
  if (readsBattery) {
    sampleBattery(demand_);
  }
  if (families_.contains(MetricFamily::sensors)) {
    snapshot_.samples.merge(sources_.sensors->sample(demand_));
  }
  publish(reason);
}

void SamplingCoordinator::sampleNetwork(MetricSet demand) {
  const bool showsUpload = demand.contains(MetricID::upload);
  const bool showsDownload = demand.contains(MetricID::download);
  if (!showsUpload && !showsDownload) {
    return;
  }
  NetworkRates rates = network_.sample(configuration_.networkInterface);
  if (showsUpload) {
    snapshot_.samples.set(MetricID::upload, std::move(rates.upload));
  }
  if (showsDownload) {
    snapshot_.samples.set(MetricID::download, std::move(rates.download));
  }
  snapshot_.networkName = std::move(rates.name);
}

void SamplingCoordinator::sampleBattery(MetricSet demand) {
  BatteryReadings battery = sources_.battery->read();
  const auto store = [&](MetricID metric, MetricSample& sample) {
    if (demand.contains(metric)) {
      snapshot_.samples.set(metric, std::move(sample));
    }
  };
  store(MetricID::batteryPercent, battery.percentage);
  store(MetricID::batteryTime, battery.duration);
  store(MetricID::adapterWatts, battery.adapterWatts);
  snapshot_.batteryOnAC = battery.onAC;
  snapshot_.batteryCharging = battery.charging;
}

std::vector<NetworkLink> SamplingCoordinator::readLinks() const {
  std::vector<NetworkLink> links;
  if (const auto table = sources_.network->read()) {
    for (const NetworkInterface& interface : *table) {
      links.push_back({interface.name, interface.isPhysical, interface.isUp, false});
    }
    const InterfaceNames& addressed = sources_.network->addressedInterfaces();
    for (NetworkLink& link : links) {
      link.isAddressed = addressed.contains(link.name);
    }
  }
  return links;
}

void SamplingCoordinator::publish(Reason reason) {
  const bool isNewsNow = !isNews || isNews(snapshot_);
  if (reason == Reason::tick && !isNewsNow) {
    return;
  }
  main_.post([weak = weak_from_this(), snapshot = snapshot_]() mutable {
    const auto self = weak.lock();
    if (self != nullptr && self->onSnapshot) {
      self->onSnapshot(std::move(snapshot));
    }
  });
}

void SamplingCoordinator::resetRates() {
  cpu_.reset();
  network_.reset();
}

}  // namespace vantora
