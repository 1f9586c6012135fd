// SPDX-License-Identifier: MIT
#include "platform/linux/cpu/proc_stat.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <cstddef>
#include <optional>
#include <span>

namespace vantora {
namespace {

Fault failure(std::string_view reason) {
  return Fault::failed("Linux /proc/stat: " + std::string(reason));
}

Fault systemFailure(int error) {
  return failure("errno " + std::to_string(error));
}

// Nothing when the sum does not fit.
std::optional<std::uint64_t> sum(std::span<const std::uint64_t> numbers) {
  std::uint64_t total = 0;
  for (const std::uint64_t number : numbers) {
    if (__builtin_add_overflow(total, number, &total)) {
      return std::nullopt;
    }
  }
  return total;
}

}  // namespace

Result<CPUTicks> parseProcStat(std::string_view text) {
  constexpr std::string_view label = "cpu ";
  const std::size_t end = text.find('\n');
  if (end == std::string_view::npos) {
    return failure("linha \"cpu\" incompleta");
  }
  std::string_view line = text.substr(0, end);
  if (!line.starts_with(label)) {
    return failure("linha \"cpu\" ausente");
  }
  line.remove_prefix(label.size());

  enum Field : std::size_t { user, nice, system, idle, iowait, irq, softirq, steal, fieldCount };
  // Kernels before 2.5.41 and 2.6.11 leave out the last ones.
  constexpr std::size_t minFields = idle + 1;
  std::array<std::uint64_t, fieldCount> fields{};
  std::size_t found = 0;
  while (found < fieldCount) {
    const std::size_t start = line.find_first_not_of(' ');
    if (start == std::string_view::npos) {
      break;
    }
    line.remove_prefix(start);
    const auto [rest, error] =
        std::from_chars(line.data(), line.data() + line.size(), fields[found]);
    line.remove_prefix(static_cast<std::size_t>(rest - line.data()));
    if (error != std::errc{} || (!line.empty() && line.front() != ' ')) {
      return failure("linha \"cpu\" ilegível");
    }
    ++found;
  }
  if (found < minFields) {
    return failure("linha \"cpu\" incompleta");
  }

  const std::array active{fields[user], fields[nice],    fields[system],
                          fields[irq],  fields[softirq], fields[steal]};
  const std::array resting{fields[idle], fields[iowait]};
  const std::optional<std::uint64_t> activeTicks = sum(active);
  const std::optional<std::uint64_t> idleTicks = sum(resting);
  if (!activeTicks || !idleTicks) {
    return failure("linha \"cpu\" ilegível");
  }
  return CPUTicks{.active = *activeTicks, .idle = *idleTicks};
}

Result<CPUTicks> ProcStatTicks::read() {
  if (!file_) {
    file_ = UniqueFd(::open(path_.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file_) {
      return systemFailure(errno);
    }
  }
  // Ten fields of at most twenty digits; the rest of the file is not wanted.
  std::array<char, 512> buffer;
  const ssize_t size = ::pread(file_.get(), buffer.data(), buffer.size(), 0);
  if (size < 0) {
    const int error = errno;
    file_.reset();
    return systemFailure(error);
  }
  return parseProcStat({buffer.data(), static_cast<std::size_t>(size)});
}

}  // namespace vantora
