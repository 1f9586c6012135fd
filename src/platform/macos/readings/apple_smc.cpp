// SPDX-License-Identifier: MIT
#include "platform/macos/readings/apple_smc.hpp"

#include <IOKit/IOKitLib.h>
#include <mach/mach.h>

namespace vantora {
namespace {

class AppleSMC final : public SMCConnection {
 public:
  explicit AppleSMC(io_connect_t connection) : connection_(connection) {}
  ~AppleSMC() override { IOServiceClose(connection_); }
  AppleSMC(const AppleSMC&) = delete;
  AppleSMC& operator=(const AppleSMC&) = delete;

  [[nodiscard]] std::optional<std::size_t> call(const SMCRecord& input,
                                                SMCRecord& output) override {
    constexpr std::uint32_t handleRecord = 2;
    std::size_t size = output.size();
    if (IOConnectCallStructMethod(connection_, handleRecord, input.data(), input.size(),
                                  output.data(), &size) != kIOReturnSuccess) {
      return std::nullopt;
    }
    return size;
  }

 private:
  io_connect_t connection_;
};

}  // namespace

std::unique_ptr<SMCConnection> openAppleSMC() {
  // Takes the dictionary over, whether it finds a service or not.
  const io_service_t service =
      IOServiceGetMatchingService(kIOMainPortDefault, IOServiceMatching("AppleSMC"));
  if (service == IO_OBJECT_NULL) {
    return nullptr;
  }
  constexpr std::uint32_t userClientType = 1;
  io_connect_t connection = IO_OBJECT_NULL;
  const kern_return_t status =
      IOServiceOpen(service, mach_task_self(), userClientType, &connection);
  IOObjectRelease(service);
  if (status != kIOReturnSuccess) {
    return nullptr;
  }
  return std::make_unique<AppleSMC>(connection);
}

}  // namespace vantora
