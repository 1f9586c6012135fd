// SPDX-License-Identifier: MIT
//
// Tick counters from /proc/stat, proc(5).
#pragma once

#include <string>
#include <string_view>

#include "runtime/unique_fd.hpp"
#include "sampling/tick_counters.hpp"

namespace vantora {

/// The counters in the file's first line ("cpu  ..."), which sums all processors. Failed,
/// with a detail, when the line is cut off or is not what proc(5) describes.
///
/// Active is user, nice, system, irq, softirq and steal: all the time in which there was
/// something to run, also while the hypervisor let another machine run it. Idle is idle
/// and iowait: a processor that waits for a disk has nothing to run. guest and
/// guest_nice are already counted in user and nice.
[[nodiscard]] Result<CPUTicks> parseProcStat(std::string_view text);

/// Keeps the file open: a read costs one system call. A file that could not be opened
/// or read is opened anew the next time.
class ProcStatTicks final : public TickCounters {
 public:
  /// `procRoot` is the folder that holds "stat".
  explicit ProcStatTicks(const std::string& procRoot = "/proc") : path_(procRoot + "/stat") {}

  [[nodiscard]] Result<CPUTicks> read() override;
  [[nodiscard]] TickTexts texts() const override {
    return {"Linux /proc/stat", "Contadores de /proc/stat reiniciados ou sem delta"};
  }

 private:
  const std::string path_;
  UniqueFd file_;
};

}  // namespace vantora
