// SPDX-License-Identifier: MIT
//
// The portal's choice of colours, on a bus of the test's own.
#include <gtest/gtest.h>

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QTest>
#include <optional>
#include <vector>

#include "settings/toolkit/appearance_setting.hpp"
#include "support/linux/private_bus.hpp"

namespace vantora {
namespace {

const QString portalName = QStringLiteral("org.freedesktop.portal.Desktop");
const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString portalInterface = QStringLiteral("org.freedesktop.portal.Settings");
const QString appearance = QStringLiteral("org.freedesktop.appearance");
const QString colorScheme = QStringLiteral("color-scheme");

// A desktop's portal as far as this setting goes.
class Portal final : public QDBusVirtualObject {
 public:
  explicit Portal(const QString& address)
      : bus_(QDBusConnection::connectToBus(address, QStringLiteral("portal"))) {
    EXPECT_TRUE(bus_.registerVirtualObject(portalPath, this));
    EXPECT_TRUE(bus_.registerService(portalName));
  }
  ~Portal() override { QDBusConnection::disconnectFromBus(QStringLiteral("portal")); }

  [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }
  bool handleMessage(const QDBusMessage& call, const QDBusConnection& bus) override {
    if (call.member() != QStringLiteral("Read")) {
      return false;
    }
    const bool isKnown = answer && call.arguments() == QVariantList{place, key};
    // As the portal answers: a variant in a variant.
    const auto inner = QVariant::fromValue(QDBusVariant(answer.value_or(QVariant())));
    return bus.send(isKnown
                        ? call.createReply(QVariant::fromValue(QDBusVariant(inner)))
                        : call.createErrorReply(
                              QStringLiteral("org.freedesktop.portal.Error.NotFound"), QString()));
  }
  void tell(const QString& settings, const QString& setting, const QVariant& value) {
    QDBusMessage signal =
        QDBusMessage::createSignal(portalPath, portalInterface, QStringLiteral("SettingChanged"));
    signal << settings << setting << QVariant::fromValue(QDBusVariant(value));
    EXPECT_TRUE(bus_.send(signal));
  }

  std::optional<QVariant> answer;  // Nothing: it does not know the setting.
  QString place = appearance;
  QString key = colorScheme;

 private:
  QDBusConnection bus_;
};

constexpr Colors usual{false, false};
constexpr Colors dark{true, false};
constexpr Colors contrasting{false, true};
constexpr Colors contrastingDark{true, true};

class AppearanceSettingTest : public testing::Test {
 protected:
  ~AppearanceSettingTest() override {
    follower_.reset();
    QDBusConnection::disconnectFromBus(QStringLiteral("window"));
  }
  void follow(const AppearanceSetting::Key& key = AppearanceSetting::colorScheme) {
    follower_.emplace(
        QDBusConnection::connectToBus(address_, QStringLiteral("window")), key,
        [this](Colors colors) { seen_.push_back(colors); }, nullptr);
  }
  // Whether `count` choices were told; after time for more when none more are due.
  bool sees(std::size_t count) {
    return QTest::qWaitFor([&] { return seen_.size() >= count; }) && seen_.size() == count;
  }
  void tell(uint scheme) { portal_.tell(appearance, colorScheme, scheme); }

  test::PrivateBus bus_;
  const QString address_ = QString::fromStdString(bus_.address());
  Portal portal_{address_};
  std::vector<Colors> seen_;
  std::optional<AppearanceSetting> follower_;
};

TEST_F(AppearanceSettingTest, ReportsTheDesktopsChoiceAtTheStart) {
  portal_.answer = 1U;
  follow();
  EXPECT_TRUE(sees(1));
  EXPECT_EQ(seen_.back(), dark);
}

TEST_F(AppearanceSettingTest, TellsEachOfTheChoices) {
  for (const uint scheme : {0U, 2U}) {
    seen_.clear();
    portal_.answer = scheme;
    follow();
    EXPECT_TRUE(sees(1));
    EXPECT_EQ(seen_.back(), usual);
  }
}

TEST_F(AppearanceSettingTest, FollowsEveryChange) {
  portal_.answer = 2U;
  follow();
  ASSERT_TRUE(sees(1));
  for (const uint scheme : {1U, 2U, 1U, 0U}) {
    const std::size_t before = seen_.size();
    tell(scheme);
    ASSERT_TRUE(sees(before + 1));
    EXPECT_EQ(seen_.back(), scheme == 1 ? dark : usual);
  }
}

TEST_F(AppearanceSettingTest, FollowsAPortalThatDidNotKnowTheSettingAtFirst) {
  follow();
  tell(1);
  EXPECT_TRUE(sees(1));
  EXPECT_EQ(seen_.back(), dark);
}

TEST_F(AppearanceSettingTest, IgnoresOtherSettingsAndWhatIsNoChoice) {
  portal_.answer = QStringLiteral("dark");
  follow();
  portal_.tell(appearance, QStringLiteral("contrast"), 1U);
  portal_.tell(QStringLiteral("org.gnome.desktop.interface"), colorScheme, 1U);
  portal_.tell(appearance, colorScheme, QStringLiteral("prefer-dark"));
  tell(3);
  tell(1);  // What came before has been looked at once this has arrived.
  EXPECT_TRUE(sees(1));
}

TEST_F(AppearanceSettingTest, TellsTheContrastBesideTheScheme) {
  follow(AppearanceSetting::contrast);
  portal_.tell(appearance, QStringLiteral("contrast"), 2U);
  tell(1);
  for (const uint contrast : {1U, 0U}) {
    const std::size_t before = seen_.size();
    portal_.tell(appearance, QStringLiteral("contrast"), contrast);
    ASSERT_TRUE(sees(before + 1));
    EXPECT_EQ(seen_.back(), contrast == 1 ? contrasting : usual);
  }
}

TEST_F(AppearanceSettingTest, TellsTheSwitchOfAnOlderGnome) {
  portal_.place = QStringLiteral("org.gnome.desktop.a11y.interface");
  portal_.key = QStringLiteral("high-contrast");
  portal_.answer = true;
  follow(AppearanceSetting::gnomeHighContrast);
  ASSERT_TRUE(sees(1));
  EXPECT_EQ(seen_.back(), contrasting);
  portal_.tell(portal_.place, portal_.key, 1U);
  portal_.tell(portal_.place, portal_.key, false);
  ASSERT_TRUE(sees(2));
  EXPECT_EQ(seen_.back(), usual);
}

TEST_F(AppearanceSettingTest, TellsTheColoursOfTheThemeByItsName) {
  portal_.place = QStringLiteral("org.gnome.desktop.interface");
  portal_.key = QStringLiteral("gtk-theme");
  portal_.answer = QStringLiteral("Adwaita");
  follow(AppearanceSetting::gtkTheme);
  ASSERT_TRUE(sees(1));
  EXPECT_EQ(seen_.back(), usual);
  portal_.tell(portal_.place, portal_.key, QStringLiteral("HighContrastInverse"));
  ASSERT_TRUE(sees(2));
  EXPECT_EQ(seen_.back(), contrastingDark);
}

TEST(Theme, IsOfHighContrastWhereItsNameSaysSo) {
  for (const char* name : {"HighContrast", "ContrastHigh", "HighContrastLargePrint"}) {
    EXPECT_EQ(colorsOfTheme(name), contrasting) << name;
  }
  for (const char* name : {"HighContrastInverse", "ContrastHighInverse"}) {
    EXPECT_EQ(colorsOfTheme(name), contrastingDark) << name;
  }
  for (const char* name : {"", "Adwaita", "Adwaita-dark", "ContrastLow", "Inverse"}) {
    EXPECT_EQ(colorsOfTheme(name), usual) << name;
  }
}

TEST_F(AppearanceSettingTest, StaysSilentWithoutABus) {
  bus_.stop();
  follow();
  QApplication::processEvents();
  EXPECT_TRUE(seen_.empty());
}

}  // namespace
}  // namespace vantora
