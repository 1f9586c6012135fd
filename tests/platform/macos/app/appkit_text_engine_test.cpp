// SPDX-License-Identifier: MIT
#include "platform/macos/app/appkit_text_engine.hpp"

#include "contract/text_engine_contract.hpp"

namespace vantora::test {

INSTANTIATE_TEST_SUITE_P(AppKit, TextEngineContract,
                         ::testing::Values(TextEngineMaker{
                             "AppKit", [] { return std::make_unique<AppKitTextEngine>(); }}),
                         [](const auto& info) { return info.param.name; });

}  // namespace vantora::test
