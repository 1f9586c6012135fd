// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <utility>

#include "settings/conversation/window_model.hpp"

namespace vantora::test {

/// Panels that wait for the test to choose or to cancel.
class FakePanels final : public FilePanels {
 public:
  void chooseExport(const std::string& proposedName, Done done) override {
    shown = "export " + proposedName;
    done_ = std::move(done);
  }
  void chooseImport(Done done) override {
    shown = "import";
    done_ = std::move(done);
  }
  void chooseExecutable(const std::string& message, Done done) override {
    shown = "executable " + message;
    done_ = std::move(done);
  }

  void choose(const std::filesystem::path& path) { done_(path); }
  void cancel() { done_(std::nullopt); }

  std::string shown;  ///< The panel that was opened last, with its texts.

 private:
  Done done_;
};

}  // namespace vantora::test
