// SPDX-License-Identifier: MIT
#include "sampling/link_reports.hpp"

#include "sampling/network_collector.hpp"

namespace vantora {
namespace {

const char* whyNotRead(const NetworkInterface& link, const InterfaceNames& addressed,
                       const std::optional<std::string>& preferred) {
  if (preferred && !preferred->empty()) {
    if (link.name != *preferred) {
      return "outra foi escolhida nas configurações";
    }
    return link.isUp ? "os seus contadores não podem ser lidos" : "está desligada";
  }
  if (!link.isPhysical) {
    return "sem hardware próprio";
  }
  if (!link.isUp) {
    return "está desligada";
  }
  return mayCarryTraffic(link, addressed) ? "a rota principal é por outra" : "sem endereço";
}

}  // namespace

std::vector<DeviceReport> linkReports(NetworkSource& source,
                                      const std::optional<std::string>& preferred,
                                      const std::optional<std::string>& read) {
  std::vector<DeviceReport> reports;
  const auto table = source.read();
  if (!table) {
    return reports;
  }
  const InterfaceNames& addressed = source.addressedInterfaces();
  for (const NetworkInterface& link : *table) {
    DeviceReport& report = reports.emplace_back();
    report.name = link.name;
    if (link.name == read) {
      report.feeds = {MetricID::upload, MetricID::download};
    } else {
      report.why = whyNotRead(link, addressed, preferred);
    }
  }
  return reports;
}

}  // namespace vantora
