// SPDX-License-Identifier: MIT
//
// The item where the panel's configuration tells how it is laid out.
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/status_item/example_presentation.hpp"
#include "platform/linux/status_item/status_item_stage.hpp"
#include "platform/linux/status_item/waybar_file.hpp"
#include "support/virtual_worker.hpp"

namespace vantora {
namespace {

using test::examplePresentation;
using test::ItemProperties;

class StatusItemLayoutTest : public test::StatusItemStage {
 protected:
  StatusItemLayoutTest() {
    options_.fileWorker = &worker_;
    options_.onScaleWanted = [this] { ++scaleWanted_; };
  }
  // time_.runPosted() reads it afterwards.
  void startItemInWaybar(std::string_view configuration) {
    startPanel("waybar");
    test::nameWaybarFile(options_.processRoot, configuration);
    startItem();
  }
  void showItem() {
    item_->show(examplePresentation("12%"));
    ASSERT_TRUE(untilShown());
    ASSERT_TRUE(untilRegistered());
  }

  test::VirtualWorker worker_{*queue_};
  int scaleWanted_ = 0;
};

TEST_F(StatusItemLayoutTest, IsASquareInAPanelWhoseConfigurationMakesItAColumn) {
  startItemInWaybar(R"({"position": "right"})");
  std::vector<bool> squares;
  item_->setSquareListener([&squares](bool keepsSquare) { squares.push_back(keepsSquare); });
  ASSERT_NO_FATAL_FAILURE(showItem());
  EXPECT_GT(ask().pixmaps.front().width, ask().pixmaps.front().height);
  time_.runPosted();
  EXPECT_EQ(ask().pixmaps.front().width, ask().pixmaps.front().height);
  EXPECT_EQ(panel_->signals(), Strings{"NewIcon"});
  EXPECT_EQ(item_->report().formWhy, "o painel é vertical: não há largura para a imagem");
  EXPECT_EQ(squares, (std::vector{false, true})) << "the user may choose its module";
}

TEST_F(StatusItemLayoutTest, FollowsTheScreensScaleWhereThePictureIsNotEnlarged) {
  startItemInWaybar(R"({"modules-right": ["tray"], "tray": {"icon-size": 22}})");
  ASSERT_NO_FATAL_FAILURE(showItem());
  time_.runPosted();
  EXPECT_EQ(scaleWanted_, 1);
  EXPECT_EQ(ask().pixmaps.front().height, 44) << "until the scale is known";
  item_->setScreenScale(1);
  const ItemProperties properties = ask();
  EXPECT_EQ(panel_->signals(), Strings{"NewIcon"});
  ASSERT_EQ(properties.pixmaps.size(), 1U);
  EXPECT_EQ(properties.pixmaps.front().height, 22);
  EXPECT_EQ(item_->report().scale, "1 pixel por ponto, como em todas as telas da sessão");
  item_->setScreenScale(2);
  EXPECT_EQ(ask().pixmaps.front().height, 44);
  item_->setScreenScale(1);
  item_->setScreenScale(std::nullopt);
  EXPECT_EQ(ask().pixmaps.front().height, 44) << "the compositor is gone";
}

TEST_F(StatusItemLayoutTest, KeepsTheLargerPictureWhereItMayBeEnlarged) {
  for (const char* tray : {"", R"(, "tray": {"icon-size": 23})"}) {
    startItemInWaybar(R"({"modules-right": ["tray"])" + std::string(tray) + "}");
    ASSERT_NO_FATAL_FAILURE(showItem());
    time_.runPosted();
    item_->setScreenScale(1);
    EXPECT_EQ(ask().pixmaps.front().height, 44) << tray;
    item_.reset();
    panel_.reset();
  }
  EXPECT_EQ(scaleWanted_, 0);
}

}  // namespace
}  // namespace vantora
