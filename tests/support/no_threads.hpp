// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>
#include <pthread.h>

#include <cstddef>

namespace vantora::test {

/// While it lives, no thread can be started: none has a stack of the size that each would get.
class NoThreads {
 public:
  NoThreads() {
    pthread_attr_t impossible;
    EXPECT_EQ(pthread_getattr_default_np(&usual_), 0);
    EXPECT_EQ(pthread_getattr_default_np(&impossible), 0);
    EXPECT_EQ(pthread_attr_setstacksize(&impossible, std::size_t{1} << 56U), 0);
    EXPECT_EQ(pthread_setattr_default_np(&impossible), 0);
    pthread_attr_destroy(&impossible);
  }
  ~NoThreads() {
    EXPECT_EQ(pthread_setattr_default_np(&usual_), 0);
    pthread_attr_destroy(&usual_);
  }
  NoThreads(const NoThreads&) = delete;
  NoThreads& operator=(const NoThreads&) = delete;

 private:
  pthread_attr_t usual_{};
};

}  // namespace vantora::test
