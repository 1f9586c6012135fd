// SPDX-License-Identifier: MIT
#include "app/print/click_input.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <cstring>

#include "runtime/uv_loop.hpp"

namespace vantora {
namespace {

class ClickInputTest : public testing::Test {
 protected:
  ClickInputTest() { EXPECT_EQ(pipe(ends_.data()), 0); }
  ~ClickInputTest() override {
    close(ends_[0]);
    closeBar();
  }
  void write(const char* text) {
    EXPECT_EQ(::write(ends_[1], text, std::strlen(text)), static_cast<ssize_t>(std::strlen(text)));
  }
  void closeBar() {
    if (ends_[1] >= 0) {
      close(ends_[1]);
      ends_[1] = -1;
    }
  }

  UvLoop loop_;
  std::array<int, 2> ends_{-1, -1};
};

TEST_F(ClickInputTest, ReadsClicksFromThePipe) {
  int lefts = 0;
  const ClickInput input(loop_.raw(), ends_[0], [&](BlockButton button) {
    lefts += button == BlockButton::left ? 1 : 0;
    loop_.stop();
  });
  loop_.queue().post([this] { write("[\n{\"name\":\"vantora\",\"button\":1}\n"); });
  loop_.run();
  EXPECT_EQ(lefts, 1);
}

// Level-triggered: an end that is not noticed would take a core.
TEST_F(ClickInputTest, RestsOnceTheBarIsGone) {
  const ClickInput input(loop_.raw(), ends_[0], [](BlockButton) {});
  closeBar();
  uv_run(&loop_.raw(), UV_RUN_NOWAIT);
  uv_run(&loop_.raw(), UV_RUN_NOWAIT);
  pollfd loop{uv_backend_fd(&loop_.raw()), POLLIN, 0};
  EXPECT_EQ(poll(&loop, 1, 0), 0) << "nothing left to wake it up";
}

TEST_F(ClickInputTest, LeavesWhatIsNoPipeAlone) {
  const int file = open("/dev/null", O_RDONLY | O_CLOEXEC);
  const ClickInput none(loop_.raw(), file, [](BlockButton) { ADD_FAILURE(); });
  const ClickInput closed(loop_.raw(), -1, [](BlockButton) { ADD_FAILURE(); });
  uv_run(&loop_.raw(), UV_RUN_NOWAIT);
  close(file);
}

}  // namespace
}  // namespace vantora
