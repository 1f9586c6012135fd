// SPDX-License-Identifier: MIT
#include "settings/window/footer.hpp"

#include <gtest/gtest.h>

#include <QLabel>
#include <QTimer>

#include "settings/window/tabs/tabs_fixture.hpp"

namespace vantora {
namespace {

using test::generalTab;

using TabsTest = test::TabsFixture;

TEST_F(TabsTest, ShowTheNoticeOnEveryTab) {
  const auto footer = [&] {
    const auto* label = view_->findChild<QLabel*>(QStringLiteral("footerNotice"));
    return label->isVisible() ? label->text() : QString();
  };
  EXPECT_EQ(footer(), QString());
  agent_.notice = "Configuração exportada.";
  tell({WindowField::notice});
  for (int tab = 0; tab < generalTab; ++tab) {
    view_->setCurrentTab(tab);
    EXPECT_EQ(footer(), QStringLiteral("Configuração exportada."));
  }
  view_->setCurrentTab(generalTab);
  EXPECT_EQ(footer(), QString());
  EXPECT_TRUE(texts(generalTab).contains(QStringLiteral("Configuração exportada.\n")));
}

// The agent clears a notice with the next save, 0.4 s later.
TEST_F(TabsTest, ShowANoticeForAsLongAsItTakesToReadIt) {
  const auto* timer = view_->findChild<QTimer*>(QStringLiteral("noticeTimer"));
  view_->setCurrentTab(generalTab);
  agent_.notice = "Configuração exportada.";
  tell({WindowField::notice});
  EXPECT_TRUE(timer->isActive());
  EXPECT_EQ(timer->interval(), 5'000);
  agent_.notice.reset();
  tell({WindowField::notice});
  EXPECT_TRUE(texts(generalTab).contains(QStringLiteral("Configuração exportada.\n")));
  model_->releaseNotice();
  EXPECT_FALSE(texts(generalTab).contains(QStringLiteral("exportada")));
}

TEST_F(TabsTest, SayInTheFooterThatNothingIsMeasured) {
  const auto* label = view_->findChild<QLabel*>(QStringLiteral("footerPaused"));
  EXPECT_FALSE(label->isVisible());
  agent_.configuration.paused = true;
  tell({WindowField::configuration});
  EXPECT_TRUE(label->isVisible());
  EXPECT_EQ(label->text(), qtText("Coleta pausada"));
  agent_.configuration.paused = false;
  tell({WindowField::configuration});
  EXPECT_FALSE(label->isVisible());
}

}  // namespace
}  // namespace vantora
