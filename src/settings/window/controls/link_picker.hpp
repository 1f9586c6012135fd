// SPDX-License-Identifier: MIT
#pragma once

#include <QComboBox>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "model/network_link.hpp"

namespace vantora {

/// An editable list of the machine's network interfaces, each with its kind and whether it is
/// addressed. A name is taken over when it is chosen, on Enter, or when the focus leaves; an
/// empty one is the automatic choice. Any name is possible.
class LinkPicker final : public QComboBox {
 public:
  LinkPicker();

  /// The user took over another name than the one shown last; nothing is the automatic choice.
  std::function<void(std::optional<std::string> name)> onName;

  /// Shows the name in force, unless the user is typing.
  void setName(const std::optional<std::string>& name);
  /// What can be chosen; an open list stays as it is.
  void setLinks(const std::vector<NetworkLink>& links);

 protected:
  void wheelEvent(QWheelEvent* event) override;

 private:
  void takeOver();
  [[nodiscard]] std::optional<std::string> typedName() const;

  std::optional<std::string> name_;
};

/// What is known about a link, in the user's words.
[[nodiscard]] std::string linkDescription(const NetworkLink& link);

/// Whether the machine is known to have no link of this name: never before the links were read.
[[nodiscard]] bool isMissing(const std::string& name, const std::vector<NetworkLink>& links);

}  // namespace vantora
