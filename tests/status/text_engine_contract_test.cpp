// SPDX-License-Identifier: MIT
#include "contract/text_engine_contract.hpp"

#include "support/fake_text_engine.hpp"

namespace vantora::test {
namespace {

INSTANTIATE_TEST_SUITE_P(Fake, TextEngineContract,
                         ::testing::Values(TextEngineMaker{
                             "Fake", [] { return std::make_unique<FakeTextEngine>(); }}));

}  // namespace
}  // namespace vantora::test
