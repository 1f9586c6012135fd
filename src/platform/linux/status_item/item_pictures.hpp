// SPDX-License-Identifier: MIT
//
// What the item shows of a presentation in the form that the panel gives it: drawn when a panel
// asks for it, and kept until it changes.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/panels/panel.hpp"
#include "platform/linux/panels/status_item_picture.hpp"
#include "platform/linux/status_item/square_pictures.hpp"
#include "platform/linux/status_item/status_notifier_item.hpp"
#include "status/drawn_image.hpp"

namespace vantora {

/// Lives on the main thread.
class ItemPictures {
 public:
  /// Which parts of a presentation are others than before.
  struct News {
    bool image = false;
    bool icon = false;  ///< In the form that it has.
    bool label = false;
    bool toolTip = false;
  };

  /// `panel` and `engine` outlive it.
  ItemPictures(const Panel& panel, TextEngine& engine) : panel_(&panel), engine_(engine) {}
  ItemPictures(const ItemPictures&) = delete;
  ItemPictures& operator=(const ItemPictures&) = delete;

  /// Another panel shows the item: a row, until setVertical() says otherwise.
  void setPanel(const Panel& panel);
  /// Returns whether that is new.
  bool setVertical(bool isVertical);
  /// Pixels in a point, 1 or 2 (at first), for a panel that is offered one picture alone. Returns
  /// whether the icon is another one now.
  bool setOnlyScale(int scale);
  /// Which module a square shows; nothing leaves it to the item. Returns whether the icon is
  /// another one now.
  bool setSquareModule(const std::optional<UUID>& module);
  News show(const StatusPresentation& presentation);

  [[nodiscard]] const StatusPresentation& presentation() const { return presentation_; }
  [[nodiscard]] PictureForm form() const;
  [[nodiscard]] bool isVertical() const { return isVertical_; }
  [[nodiscard]] int onlyScale() const { return onlyScale_; }
  /// Of the whole picture with its margins, in points.
  [[nodiscard]] double length() const;
  /// The readings as one line; empty where the form has no label.
  [[nodiscard]] const std::string& label() const { return label_; }

  /// As StatusNotifierContent asks for them.
  [[nodiscard]] std::size_t count() const;
  [[nodiscard]] StatusNotifierContent::Picture picture(std::size_t index);
  /// For a window of this size in pixels: the whole picture, or a square where it does not fit.
  [[nodiscard]] AlphaBitmap trayPicture(int width, int height, int scale);

 private:
  void takeContent();

  const Panel* panel_;
  TextEngine& engine_;
  bool isVertical_ = false;  // the panel, as far as it lets itself be asked
  int onlyScale_ = 2;        // pixels in a point, where one picture is offered alone
  StatusPresentation presentation_;
  std::optional<UUID> squareModule_;
  SquareContent square_;  // of the square form; empty otherwise
  std::string label_;     // of the label form; empty otherwise

  /// What was drawn for one of the pictures that panels ask for, for when they ask again.
  struct Drawn {
    DrawnImage image;
    AlphaBitmap mark;
  };
  SquarePictures squares_;
  std::vector<Drawn> drawn_;  // by the picture's index, for the panel that is there now
  DrawnImage trayDrawn_;
};

}  // namespace vantora
