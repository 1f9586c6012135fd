// SPDX-License-Identifier: MIT
#include "sampling/network_collector.hpp"

#include <utility>

#include "model/metric_math.hpp"

namespace vantora {
namespace {

constexpr Seconds backOff{10};
// A longer gap is a pause or a sleep, and an average over it is no present rate.
constexpr Seconds maxGap{30};

NetworkRates unavailable(const std::string& source) {
  return {MetricSample::unavailable(source), MetricSample::unavailable(source), std::nullopt};
}

NetworkRates waiting(const std::string& name, const char* reason) {
  const std::string source = name + reason;
  return {MetricSample::waiting(source), MetricSample::waiting(source), name};
}

}  // namespace

NetworkRates NetworkCollector::sample(const std::optional<std::string>& preferred) {
  const Seconds now = clock_.uptime();
  if (now < retryAfter_) {
    return unavailable("Contadores de rede indisponíveis; nova tentativa em até 10 s");
  }
  const Result<Table> table = source_.read();
  if (!table) {
    retryAfter_ = now + backOff;
    return unavailable(table.fault().detail);
  }
  Result<Reading> chosen = choose(*table, preferred);
  if (!chosen) {
    if (chosen.fault().kind == Fault::Kind::failed) {
      retryAfter_ = now + backOff;
    } else {
      previous_.reset();
    }
    return unavailable(chosen.fault().detail);
  }
  Reading current = std::move(chosen).value();
  current.time = now;
  NetworkRates rates = compare(previous_, current);
  previous_ = std::move(current);
  return rates;
}

void NetworkCollector::reset() {
  previous_.reset();
  retryAfter_ = Seconds{0};
}

Result<NetworkCollector::Reading> NetworkCollector::choose(
    Table table, const std::optional<std::string>& preferred) {
  if (preferred && !preferred->empty()) {
    Result<Reading> chosen = readFirst(table, [&](const NetworkInterface& interface) {
      return interface.isUp && interface.name == *preferred;
    });
    if (!chosen && chosen.fault().kind == Fault::Kind::absent) {
      return Fault::absent("Interface selecionada indisponível");
    }
    return chosen;
  }

  const std::optional<std::string> primary = source_.primaryInterface();
  const InterfaceNames& addressed = source_.addressedInterfaces();
  const auto isEligible = [&](const NetworkInterface& interface) {
    return mayCarryTraffic(interface, addressed);
  };
  if (primary) {
    Result<Reading> chosen = readFirst(table, [&](const NetworkInterface& interface) {
      return interface.name == *primary && isEligible(interface);
    });
    if (chosen || chosen.fault().kind == Fault::Kind::failed) {
      return chosen;
    }
  }
  Result<Reading> chosen = readFirst(table, isEligible);
  if (!chosen && chosen.fault().kind == Fault::Kind::absent) {
    return Fault::absent("Sem interface física ativa");
  }
  return chosen;
}

// The first wanted interface that is still there when its counters are asked for.
template <typename Condition>
Result<NetworkCollector::Reading> NetworkCollector::readFirst(Table table,
                                                              const Condition& isWanted) {
  for (std::size_t position = 0; position < table.size(); ++position) {
    const NetworkInterface& interface = table[position];
    if (!isWanted(interface)) {
      continue;
    }
    const Result<NetworkCounters> counters = source_.counters(position);
    if (counters) {
      return Reading{interface.name, interface.index, *counters, Seconds{0}};
    }
    if (counters.fault().kind == Fault::Kind::failed) {
      return counters.fault();
    }
  }
  return Fault::absent();
}

NetworkRates NetworkCollector::compare(const std::optional<Reading>& previous,
                                       const Reading& current) const {
  if (!previous || previous->name != current.name) {
    return waiting(current.name, " · primeira amostra de 64 bits");
  }
  const Seconds elapsed = current.time - previous->time;
  // A device that was unplugged and came back under its name counts from zero again; its
  // index shows it even when it has already counted past the old value.
  if (elapsed <= maxGap && previous->index == current.index) {
    const std::optional<double> upload =
        MetricMath::rate(current.counters.sent, previous->counters.sent, elapsed.count());
    const std::optional<double> download =
        MetricMath::rate(current.counters.received, previous->counters.received, elapsed.count());
    if (upload && download) {
      std::string source = current.name + " · ";
      source += source_.mechanism();
      source += " · bytes/s";
      const WallTime now = clock_.now();
      return {MetricSample::valid(*upload, source, now),
              MetricSample::valid(*download, source, now), current.name};
    }
  }
  return waiting(current.name, " · base reiniciada após pausa ou reset");
}

}  // namespace vantora
