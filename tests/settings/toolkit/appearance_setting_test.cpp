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
    const bool isKnown = answer && call.arguments() == QVariantList{appearance, colorScheme};
    // As the portal answers: a variant in a variant.
    const auto inner = QVariant::fromValue(QDBusVariant(answer.value_or(QVariant())));
    return bus.send(isKnown
                        ? call.createReply(QVariant::fromValue(QDBusVariant(inner)))
                        : call.createErrorReply(
                              QStringLiteral("org.freedesktop.portal.Error.NotFound"), QString()));
  }
  void tell(const QString& settings, const QString& key, const QVariant& value) {
    QDBusMessage signal =
        QDBusMessage::createSignal(portalPath, portalInterface, QStringLiteral("SettingChanged"));
    signal << settings << key << QVariant::fromValue(QDBusVariant(value));
    EXPECT_TRUE(bus_.send(signal));
  }

  std::optional<QVariant> answer;  // Nothing: it does not know the setting.

 private:
  QDBusConnection bus_;
};

class AppearanceSettingTest : public testing::Test {
 protected:
  ~AppearanceSettingTest() override {
    follower_.reset();
    QDBusConnection::disconnectFromBus(QStringLiteral("window"));
  }
  void follow() {
    follower_.emplace(
        QDBusConnection::connectToBus(address_, QStringLiteral("window")),
        AppearanceSetting::colorScheme, [this](uint value) { seen_.push_back(value); }, nullptr);
  }
  // Whether `count` choices were told; after time for more when none more are due.
  bool sees(std::size_t count) {
    return QTest::qWaitFor([&] { return seen_.size() >= count; }) && seen_.size() == count;
  }
  void tell(uint scheme) { portal_.tell(appearance, colorScheme, scheme); }

  test::PrivateBus bus_;
  const QString address_ = QString::fromStdString(bus_.address());
  Portal portal_{address_};
  std::vector<uint> seen_;
  std::optional<AppearanceSetting> follower_;
};

TEST_F(AppearanceSettingTest, ReportsTheDesktopsChoiceAtTheStart) {
  portal_.answer = 1U;
  follow();
  EXPECT_TRUE(sees(1));
  EXPECT_EQ(seen_.back(), 1U);
}

TEST_F(AppearanceSettingTest, TellsEachOfTheChoices) {
  for (const uint scheme : {0U, 2U}) {
    seen_.clear();
    portal_.answer = scheme;
    follow();
    EXPECT_TRUE(sees(1));
    EXPECT_EQ(seen_.back(), scheme);
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
    EXPECT_EQ(seen_.back(), scheme);
  }
}

TEST_F(AppearanceSettingTest, FollowsAPortalThatDidNotKnowTheSettingAtFirst) {
  follow();
  tell(1);
  EXPECT_TRUE(sees(1));
  EXPECT_EQ(seen_.back(), 1U);
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
  std::vector<uint> contrasts;
  const AppearanceSetting contrast(
      QDBusConnection::connectToBus(address_, QStringLiteral("window")),
      AppearanceSetting::contrast, [&](uint value) { contrasts.push_back(value); }, nullptr);
  portal_.tell(appearance, QStringLiteral("contrast"), 2U);
  tell(1);
  portal_.tell(appearance, QStringLiteral("contrast"), 1U);
  EXPECT_TRUE(QTest::qWaitFor([&] { return !contrasts.empty(); }));
  EXPECT_EQ(contrasts, std::vector<uint>{1});
}

TEST_F(AppearanceSettingTest, StaysSilentWithoutABus) {
  bus_.stop();
  follow();
  QApplication::processEvents();
  EXPECT_TRUE(seen_.empty());
}

}  // namespace
}  // namespace vantora
