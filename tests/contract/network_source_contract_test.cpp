// SPDX-License-Identifier: MIT
//
// The contract, kept by the real ones of Linux and by the fake.
#include "contract/network_source_contract.hpp"
#include "platform/linux/network/rtnetlink_source.hpp"
#include "support/fake_network_source.hpp"

namespace vantora::test {
namespace {

struct FakeNetwork {
  test::FakeNetworkSource source;
  FakeNetwork() {
    source.add("lo");
    source.setPhysical("lo", false);
    source.add("eth0");
    source.setCounters("eth0", 10, 20);
    source.setPrimary("eth0");
  }
};
struct WithSysfs {
  RtnetlinkSource source;
};
struct WithoutSysfs {
  RtnetlinkSource source{"/nonexistent"};
};

using Networks = testing::Types<FakeNetwork, WithSysfs, WithoutSysfs>;
INSTANTIATE_TYPED_TEST_SUITE_P(Linux, NetworkSourceContract, Networks);

}  // namespace
}  // namespace vantora::test
