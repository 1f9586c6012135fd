// SPDX-License-Identifier: MIT
#include "platform/linux/status_item/module_items.hpp"

#include <algorithm>
#include <utility>

#include "platform/linux/status_item/square_pictures.hpp"

namespace vantora {
namespace {

// A watcher that takes its name before it is ready refuses at first.
constexpr int maxRegistrations = 6;

}  // namespace

/// One module on the bus.
class ModuleItems::Item final : private StatusNotifierContent {
 public:
  Item(const Parts& parts, BusConnection& connection, ModuleSquare square, std::string path)
      : parts_(parts),
        square_(std::move(square)),
        item_(connection, *this, parts.events, {std::move(path), square_.id, square_.title}) {
    item_.setMenu(DBusMenu::path);
  }

  [[nodiscard]] const ModuleSquare& square() const { return square_; }
  [[nodiscard]] const std::string& path() const { return item_.identity().path; }

  void show(ModuleSquare square) {
    const bool isNewIcon = square.content != square_.content;
    const bool isNewToolTip = square.toolTip != square_.toolTip;
    square_ = std::move(square);
    if (isNewIcon) {
      item_.announceIcon();
    }
    if (isNewToolTip && parts_.panel.hasToolTip) {
      item_.announceToolTip();
    }
  }

  void announceIcon() { item_.announceIcon(); }

 private:
  [[nodiscard]] std::size_t pictureCount() const override { return SquarePictures::count(); }
  [[nodiscard]] Picture picture(std::size_t index) override {
    return pictures_.picture(index, square_.content, parts_.engine);
  }
  [[nodiscard]] Ink ink() const override { return parts_.ink(); }
  [[nodiscard]] std::string toolTip() const override {
    return parts_.panel.hasToolTip ? toolTipFor(parts_.panel, square_.toolTip) : std::string();
  }
  [[nodiscard]] std::string accessibleDescription() const override { return square_.toolTip; }
  [[nodiscard]] std::string label() const override { return {}; }

  const Parts& parts_;
  ModuleSquare square_;
  SquarePictures pictures_;
  StatusNotifierItem item_;
};

ModuleItems::ModuleItems(Parts parts) : parts_(std::move(parts)) {}

ModuleItems::~ModuleItems() {
  takeDown();
}

void ModuleItems::show(const StatusPresentation& presentation) {
  std::vector<ModuleSquare> squares = moduleSquares(presentation);
  if (!isSameRow(squares)) {
    putUp(squares);
    return;
  }
  menu_->refresh();
  for (std::size_t index = 0; index < squares.size(); ++index) {
    items_[index]->show(std::move(squares[index]));
  }
}

void ModuleItems::announceIcons() {
  for (const auto& item : items_) {
    item->announceIcon();
  }
}

bool ModuleItems::isSameRow(const std::vector<ModuleSquare>& squares) const {
  return std::equal(squares.begin(), squares.end(), items_.begin(), items_.end(),
                    [](const ModuleSquare& square, const std::unique_ptr<Item>& item) {
                      return square.id == item->square().id && square.title == item->square().title;
                    });
}

void ModuleItems::putUp(const std::vector<ModuleSquare>& squares) {
  takeDown();
  connection_ = parts_.connection.another();
  menu_ = std::make_unique<DBusMenu>(*connection_, parts_.isPaused, parts_.onCommand);
  for (const ModuleSquare& square : squares) {
    items_.push_back(std::make_unique<Item>(
        parts_, *connection_, square, "/StatusNotifierItem/" + std::to_string(items_.size() + 1)));
  }
  connection_->add(*this);  // the last, so that the objects are there
  connection_->open();
}

// All of them, because one that was refused would come behind those that were not.
void ModuleItems::putUpAgain() {
  std::vector<ModuleSquare> squares;
  for (const auto& item : items_) {
    squares.push_back(item->square());
  }
  putUp(squares);
}

void ModuleItems::takeDown() {
  if (connection_ == nullptr) {
    return;
  }
  connection_->remove(*this);
  busLost();
  items_.clear();
  menu_.reset();
  connection_.reset();
}

void ModuleItems::busConnected(sd_bus& bus) {
  bus_ = &bus;
  registerAll();
}

void ModuleItems::busLost() {
  bus_ = nullptr;
  calls_.clear();
  retry_.reset();
}

void ModuleItems::registerAll() {
  calls_.clear();
  calls_.resize(items_.size());
  for (std::size_t index = 0; index < items_.size(); ++index) {
    const bool isMirrored = parts_.panel.itemOrder == ItemOrder::rightmost;
    const Item& item = *items_[isMirrored ? items_.size() - 1 - index : index];
    sd_bus_call_method_async(bus_, out(calls_[index]), "org.kde.StatusNotifierWatcher",
                             "/StatusNotifierWatcher", "org.kde.StatusNotifierWatcher",
                             "RegisterStatusNotifierItem", onRegistered, this, "s",
                             item.path().c_str());
  }
}

int ModuleItems::onRegistered(sd_bus_message* reply, void* self, sd_bus_error*) {
  auto* row = static_cast<ModuleItems*>(self);
  if (sd_bus_message_is_method_error(reply, nullptr) > 0 && row->retry_ == nullptr &&
      ++row->failedRegistrations_ < maxRegistrations) {
    const Seconds delay = busRetryDelay(row->failedRegistrations_);
    row->retry_ = row->parts_.queue.runAfter(delay, delay / 4, [row] { row->putUpAgain(); });
  }
  return 0;
}

}  // namespace vantora
