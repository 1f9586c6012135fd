// SPDX-License-Identifier: MIT
#include "platform/linux/path_watch.hpp"

#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <filesystem>
#include <string_view>
#include <utility>

namespace vantora {
namespace {

constexpr std::uint32_t wanted =
    IN_CREATE | IN_MOVED_TO | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;

struct Place {
  std::filesystem::path folder;
  std::string name;
  bool operator==(const Place&) const = default;
};

// The deepest folder on the way to the path that exists, and what is awaited in it.
Place placeOf(const std::filesystem::path& path) {
  std::filesystem::path folder = path.parent_path();
  std::filesystem::path name = path.filename();
  std::error_code error;
  while (!std::filesystem::is_directory(folder, error) && folder.has_relative_path()) {
    name = folder.filename();
    folder = folder.parent_path();
  }
  return {std::move(folder), name.string()};
}

}  // namespace

PathWatch::PathWatch(uv_loop_t& loop, std::function<void()> onAppeared)
    : loop_(loop), onAppeared_(std::move(onAppeared)) {}

PathWatch::~PathWatch() {
  stop();
}

bool PathWatch::start(const std::string& path) {
  if (!path.starts_with('/')) {
    return false;
  }
  if (!events_) {
    events_ = UniqueFd(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK));
    auto poll = std::make_unique<uv_poll_t>();
    if (!events_ || uv_poll_init(&loop_, poll.get(), events_.get()) != 0) {
      events_.reset();
      return false;
    }
    poll_ = poll.release();
    poll_->data = this;
    uv_poll_start(poll_, UV_READABLE, [](uv_poll_t* handle, int, int) {
      static_cast<PathWatch*>(handle->data)->dispatch();
    });
  }
  // What is made while a folder is not watched yet shows in a second look.
  constexpr int mostLooks = 8;
  Place place = placeOf(path);
  for (int look = 0; look < mostLooks; ++look) {
    const int watch = ::inotify_add_watch(events_.get(), place.folder.c_str(), wanted);
    if (watch_ >= 0 && watch_ != watch) {
      ::inotify_rm_watch(events_.get(), watch_);
    }
    watch_ = watch;
    Place now = placeOf(path);
    if (watch >= 0 && now == place) {
      awaited_ = std::move(place.name);
      return true;
    }
    place = std::move(now);
  }
  stop();
  return false;
}

void PathWatch::stop() {
  if (poll_ != nullptr) {
    uv_poll_stop(poll_);
    uv_close(reinterpret_cast<uv_handle_t*>(std::exchange(poll_, nullptr)),
             [](uv_handle_t* handle) { delete reinterpret_cast<uv_poll_t*>(handle); });
  }
  events_.reset();
  watch_ = -1;
}

void PathWatch::dispatch() {
  alignas(inotify_event) std::array<char, 4096> buffer{};
  const ssize_t length = ::read(events_.get(), buffer.data(), buffer.size());
  bool hasAppeared = false;
  for (ssize_t offset = 0; offset < length;) {
    inotify_event event{};
    std::memcpy(&event, buffer.data() + offset, sizeof event);
    // The name ends with zero bytes, of which the length counts all.
    const std::string_view name =
        event.len > 0 ? buffer.data() + offset + sizeof event : std::string_view();
    const bool isOfFolder = (event.mask & (IN_DELETE_SELF | IN_MOVE_SELF | IN_Q_OVERFLOW)) != 0;
    hasAppeared = hasAppeared || isOfFolder || (event.wd == watch_ && name == awaited_);
    offset += static_cast<ssize_t>(sizeof event + event.len);
  }
  if (hasAppeared) {
    onAppeared_();
  }
}

}  // namespace vantora
