// SPDX-License-Identifier: MIT
#include "app/shell/app_model.h"
#include "app/ui/preferences_window.h"
#include "tests/support/fake_desktop/fake_desktop.h"

#include <QAccessible>
#include <QApplication>
#include <QFile>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>
#include <QUrl>

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <utility>

namespace kelvora {
namespace {

using Calls = std::vector<std::string>;

const std::string page = "open x-apple.systempreferences:com.apple.preference.security?";

/// The real window, over a desktop in memory.
class PreferencesTest : public testing::Test {
protected:
    void open(QSize size = {540, 1500}) {
        model.emplace(desktop.services(), desktop.session());
        desktop.sessionCalls.clear();
        preferences = PreferencesWindow::create(*model, desktop.session().addressOpener, {},
                                                [](MenuAction) {});
        ASSERT_NE(preferences, nullptr);
        window().resize(size);
        show();
    }
    void show() {
        window().show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&window()));
        window().requestActivate();
        settle();
    }
    static void settle() { QTest::qWait(1); }

    QQuickWindow& window() { return static_cast<QQuickWindow&>(preferences->window()); }
    QQuickItem& item(const char* name) {
        auto* found = window().findChild<QQuickItem*>(QLatin1String(name));
        if (found == nullptr) {
            ADD_FAILURE() << "no item " << name;
            std::abort();
        }
        return *found;
    }
    QVariant value(const char* name, const char* property) { return item(name).property(property); }
    bool isShown(const char* name) { return item(name).isVisible(); }
    void click(const char* name) {
        QQuickItem& target = item(name);
        settle(); // rows find their places before a frame
        const QPointF middle = target.mapToScene(QPointF(target.width() / 2, target.height() / 2));
        QTest::mouseClick(&window(), Qt::LeftButton, {}, middle.toPoint());
        settle();
    }
    /// Opens the picker's list, goes up or down from what is chosen, and takes that.
    void choose(const char* picker, const std::vector<Qt::Key>& keys) {
        item(picker).forceActiveFocus(Qt::TabFocusReason);
        QTest::keyClick(&window(), Qt::Key_Space);
        for (const Qt::Key key : keys)
            QTest::keyClick(&window(), key);
        QTest::keyClick(&window(), Qt::Key_Return);
        settle();
    }

    fake::FakeDesktop desktop;
    std::optional<AppModel> model;
    std::unique_ptr<PreferencesWindow> preferences;
};

TEST_F(PreferencesTest, SettingsAreStoredAsTheUserSetsThem) {
    desktop.login.refusal = "no room";
    open();
    for (const std::string control : {"isEnabled", "reselectPastedText"}) {
        desktop.sessionCalls.clear();
        click(control.c_str());
        EXPECT_FALSE(value(control.c_str(), "checked").toBool()) << control;
        EXPECT_EQ(desktop.sessionCalls, Calls{"store " + control});
    }
    EXPECT_FALSE(model->isEnabled());
    EXPECT_FALSE(model->reselectPastedText());
    model->setIsEnabled(true);
    EXPECT_TRUE(value("isEnabled", "checked").toBool()) << "set from the menu";

    EXPECT_FALSE(isShown("statusMessage"));
    click("launchAtLogin");
    EXPECT_FALSE(value("launchAtLogin", "checked").toBool()) << "refused, and explained";
    EXPECT_TRUE(isShown("statusMessage"));
    EXPECT_EQ(model->statusMessage(), "Launch at Login could not be changed: no room");
    desktop.login.refusal.reset();
    click("launchAtLogin");
    EXPECT_TRUE(value("launchAtLogin", "checked").toBool());
    EXPECT_TRUE(desktop.login.enabled);
    EXPECT_FALSE(isShown("statusMessage"));
}

TEST_F(PreferencesTest, IntervalThatIsNotListedShowsNoChoiceAndStays) {
    desktop.defaults.values["sensitivity"] = 0.45;
    open();
    EXPECT_EQ(value("sensitivityPicker", "currentIndex"), -1);
    EXPECT_EQ(value("sensitivityPicker", "displayText"), "");
    model->refreshPermissions();
    window().hide();
    show();
    EXPECT_EQ(desktop.sessionCalls, Calls());
    EXPECT_EQ(model->sensitivity(), 0.45);

    choose("sensitivityPicker", {Qt::Key_Down, Qt::Key_Down});
    EXPECT_EQ(model->sensitivity(), 0.4);
    EXPECT_EQ(desktop.sessionCalls, Calls{"store sensitivity"});
}

TEST_F(PreferencesTest, LayoutsAreChosenOnceThereAreTwo) {
    const std::vector<InputSource> both = desktop.layouts.enabled;
    desktop.layouts.enabled.resize(1);
    open();
    EXPECT_TRUE(isShown("inputSourcesAdvice"));
    EXPECT_FALSE(isShown("firstSource"));
    EXPECT_FALSE(isShown("secondSource"));

    desktop.layouts.enabled = both;
    desktop.layouts.enabled.push_back(both[0]);
    desktop.layouts.enabled[2].id = "third";
    model->refreshInputSources();
    settle();
    EXPECT_FALSE(isShown("inputSourcesAdvice"));
    EXPECT_EQ(value("firstSourcePicker", "currentIndex"), 0);
    EXPECT_EQ(value("secondSourcePicker", "currentIndex"), 1);

    choose("secondSourcePicker", {Qt::Key_Down});
    EXPECT_EQ(model->secondSourceID(), "third");
    choose("secondSourcePicker", {Qt::Key_Up, Qt::Key_Up});
    EXPECT_EQ(model->secondSourceID(), "third") << "the first layout cannot be the second too";
    EXPECT_EQ(value("secondSourcePicker", "currentIndex"), 2);

    desktop.layouts.enabled.insert(desktop.layouts.enabled.begin(), both[0]);
    desktop.layouts.enabled[0].id = "new";
    model->refreshInputSources();
    settle();
    EXPECT_EQ(value("firstSourcePicker", "currentIndex"), 1) << "the list has grown at its top";
    EXPECT_EQ(value("secondSourcePicker", "currentIndex"), 3);
}

TEST_F(PreferencesTest, PermissionsAreAskedForAndSeenToBeGranted) {
    for (const bool isGranted : {false, true}) {
        desktop.permissions.accessibility = desktop.permissions.inputMonitoring = isGranted;
        if (isGranted)
            model->refreshPermissions();
        else
            open();
        settle();
        for (const std::string row : {"accessibility", "inputMonitoring"}) {
            SCOPED_TRACE(row);
            const auto part = [&](const char* name) { return row + name; };
            EXPECT_EQ(isShown(part("Button").c_str()), !isGranted);
            EXPECT_EQ(value(part("State").c_str(), "text"), isGranted ? "Granted" : "Needed");
            EXPECT_EQ(value(part("Sign").c_str(), "name"),
                      isGranted ? "checkmark.circle.fill" : "exclamationmark.circle");
        }
        if (!isGranted) {
            desktop.sessionCalls.clear();
            click("accessibilityButton");
            click("inputMonitoringButton");
            EXPECT_EQ(desktop.sessionCalls,
                      (Calls{"prompt accessibility", page + "Privacy_Accessibility",
                             "prompt listening", page + "Privacy_ListenEvent"}));
        }
    }
}

TEST_F(PreferencesTest, GuideStartsWithWhatIsMissingAndOpensWhatIsSelected) {
    for (const bool isGranted : {false, true}) {
        SCOPED_TRACE(isGranted);
        desktop.permissions.inputMonitoring = isGranted;
        open();
        EXPECT_EQ(value("guideTarget", "currentIndex"), isGranted ? 1 : 0);
        EXPECT_EQ(value("openTargetSettings", "text"),
                  isGranted ? "Open Accessibility" : "Open Input Monitoring");
        click("openTargetSettings");
        EXPECT_EQ(desktop.sessionCalls,
                  Calls{page + (isGranted ? "Privacy_Accessibility" : "Privacy_ListenEvent")});

        desktop.permissions.inputMonitoring = !isGranted;
        model->refreshPermissions();
        EXPECT_EQ(value("guideTarget", "currentIndex"), isGranted ? 1 : 0) << "only at first";
    }
}

TEST_F(PreferencesTest, GuideRunsOnlyWhileItIsSeen) {
    open({540, 680});
    const auto isRunning = [this] {
        settle();
        return value("dragGuideClock", "isRunning").toBool();
    };
    EXPECT_FALSE(isRunning()) << "below what the window shows";
    item("page").setProperty("contentY", 500);
    EXPECT_TRUE(isRunning());
    window().hide();
    EXPECT_FALSE(isRunning());
    show();
    EXPECT_TRUE(isRunning());
    window().showMinimized();
    EXPECT_FALSE(isRunning());
    window().showNormal();
    EXPECT_TRUE(isRunning());

    item("guideHeading").forceActiveFocus(Qt::TabFocusReason);
    QTest::keyClick(&window(), Qt::Key_Space);
    EXPECT_FALSE(isRunning());
    window().close();
    show();
    EXPECT_FALSE(isRunning()) << "stays as the user left it";
    EXPECT_FALSE(isShown("dragGuidePicture"));
}

TEST_F(PreferencesTest, EveryControlHasANameAndIsReachedByTheTabKey) {
    desktop.permissions.accessibility = false;
    desktop.permissions.inputMonitoring = false;
    open({540, 680});
    QStringList names;
    for (int step = 0; step < 13; ++step) {
        QTest::keyClick(&window(), Qt::Key_Tab);
        QQuickItem* focus = window().activeFocusItem();
        QAccessibleInterface* control = QAccessible::queryAccessibleInterface(focus);
        ASSERT_NE(control, nullptr) << step;
        names << control->text(QAccessible::Name);
        const double top = focus->mapToScene({0, 0}).y();
        EXPECT_GE(top, 0) << names.back().toStdString();
        EXPECT_LE(top + focus->height(), 680) << names.back().toStdString();
    }
    const QStringList expected{"Enable Kelvora",    "Double Shift interval",
                               "Launch at Login",   "Keep converted selection selected",
                               "Open How-To Guide", "First layout",
                               "Second layout",     "Open Settings",
                               "Open Settings",     "How to Grant Access (Drag Animation)",
                               "Input Monitoring",  "Open Input Monitoring",
                               "Enable Kelvora"};
    EXPECT_EQ(names.join('\n').toStdString(), expected.join('\n').toStdString());
}

TEST_F(PreferencesTest, ColoursFollowTheDesktopWhileTheWindowIsOpen) {
    const auto sample = [this] {
        QStringList list;
        for (QQuickItem* each : window().contentItem()->findChildren<QQuickItem*>())
            if (const QVariant color = each->property("color"); color.isValid())
                list << color.value<QColor>().name(QColor::HexArgb);
        return list.join('\n').toStdString();
    };
    const auto colours = [&sample] {
        std::string last;
        // Some change gently.
        (void)QTest::qWaitFor([&] {
            QTest::qWait(100);
            return std::exchange(last, sample()) == last;
        });
        return last;
    };
    const QPalette before = QGuiApplication::palette();
    open({540, 680});
    const std::string light = colours();
    QGuiApplication::setPalette(QPalette(QColor(0x40, 0x40, 0x44), QColor(0x20, 0x20, 0x22)));
    const std::string changed = colours();
    open({540, 680});
    EXPECT_EQ(changed, colours());
    EXPECT_NE(changed, light);
    QGuiApplication::setPalette(before);
}

TEST_F(PreferencesTest, HowToGuideIsAFileThatExists) {
    open();
    click("openHowTo");
    ASSERT_EQ(desktop.sessionCalls.size(), 1U);
    const std::string call = desktop.sessionCalls[0];
    ASSERT_TRUE(call.starts_with("open file://")) << call;
    EXPECT_TRUE(QFile::exists(QUrl(QString::fromStdString(call.substr(5))).toLocalFile())) << call;
}

} // namespace
} // namespace kelvora

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
