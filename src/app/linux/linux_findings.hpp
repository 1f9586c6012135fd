// SPDX-License-Identifier: MIT
//
// What only Linux tells of a session and of a machine, for a diagnosis.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "app/diagnosis/diagnosis.hpp"
#include "model/sample.hpp"
#include "platform/linux/desktop/xdg_folders.hpp"
#include "runtime/clock.hpp"
#include "runtime/work_thread.hpp"

namespace vantora {

/// The kind of session: "Wayland", "X11", "terminal"…
[[nodiscard]] std::string sessionKind(const EnvironmentLookup& environment = processEnvironment);

/// The distribution, as the file os-release(5) names it, and the kernel.
[[nodiscard]] std::string systemText(const std::filesystem::path& osRelease = "/etc/os-release");

/// Typefaces and libraries, of the program that draws characters, or why they are not known.
/// Waits for it.
void findTypefaces(const std::string& program, Diagnosis& diagnosis);

/// Reads each kind of device on a thread of its own, so that a driver which never answers costs
/// its own part of the diagnosis and no more.
class DeviceLook {
 public:
  struct Threads {
    WorkThread& links;
    WorkThread& battery;
    WorkThread& sensors;
  };
  /// How long each kind of device may take.
  static constexpr Seconds timeout{3};
  /// From the beginning to finish(): rates of a shorter time say little.
  static constexpr Seconds minDistance{0.5};

  /// Begins at once. `clock` outlives the reads, which may outlive this object.
  DeviceLook(Threads threads, const Clock& clock, std::optional<std::string> preferredLink);
  ~DeviceLook();
  DeviceLook(const DeviceLook&) = delete;
  DeviceLook& operator=(const DeviceLook&) = delete;

  /// Reads once more what a rate is made of, and waits for all devices. Puts the lists into
  /// `diagnosis` and returns the readings. Once.
  [[nodiscard]] MetricSnapshot finish(Diagnosis& diagnosis);

 private:
  struct Work;
  std::unique_ptr<Work> work_;
};

}  // namespace vantora
