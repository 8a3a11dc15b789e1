// SPDX-License-Identifier: MIT
#include "app/ui/preferences/persistent_window.h"
#include "app/ui/window_presenter.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QQmlComponent>
#include <QQuickItem>
#include <QTest>

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace kelvora {
namespace {

constexpr auto content = R"(
    import QtQuick
    FocusScope {
        property string asked
        function undo() { asked += "undo;" }
        function redo() { asked += "redo;" }
        TextInput { objectName: "field" }
        Item { objectName: "picture" }
    })";

class PersistentWindowTest : public testing::Test {
protected:
    PersistentWindowTest() : component(window.engine()) {
        QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
        component.setData(content, {});
        window.setContent({}, &component, component.create());
        field().setProperty("text", "hello");
    }
    QQuickItem& item(const char* name) { return *window.findChild<QQuickItem*>(name); }
    QQuickItem& field() { return item("field"); }
    QString text() { return field().property("text").toString(); }

    bool press(Qt::Key key, Qt::KeyboardModifiers modifiers) {
        return window.performKeyEquivalent(QKeyEvent(QEvent::KeyPress, key, modifiers));
    }

    PersistentWindow window;
    QQmlComponent component;
};

TEST_F(PersistentWindowTest, KeyEquivalentsGoToTheFocusedItem) {
    field().forceActiveFocus();
    constexpr auto control = Qt::ControlModifier;
    constexpr auto both = Qt::ControlModifier | Qt::ShiftModifier;
    QGuiApplication::clipboard()->setText("other");
    const struct {
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
        bool isPerformed;
        const char* text;
        const char* clipboard;
    } steps[] = {
        {Qt::Key_A, control, true, "hello", "other"},
        {Qt::Key_X, {}, false, "hello", "other"},
        {Qt::Key_X, both, false, "hello", "other"},
        {Qt::Key_B, control, false, "hello", "other"},
        {Qt::Key_C, control, true, "hello", "hello"},
        {Qt::Key_X, control, true, "", "hello"},
        {Qt::Key_V, control, true, "hello", "hello"},
        {Qt::Key_V, control, true, "hellohello", "hello"},
        {Qt::Key_Z, control, true, "hello", "hello"},
        {Qt::Key_Z, both, true, "hellohello", "hello"},
    };
    for (const auto& step : steps) {
        SCOPED_TRACE(static_cast<char>(step.key));
        EXPECT_EQ(press(step.key, step.modifiers), step.isPerformed);
        EXPECT_EQ(text(), step.text);
        EXPECT_EQ(QGuiApplication::clipboard()->text(), step.clipboard);
    }
}

TEST_F(PersistentWindowTest, ActionsGoToTheNearestItemThatCan) {
    EXPECT_FALSE(window.perform("paste")) << "nothing has the focus";
    item("picture").forceActiveFocus();
    EXPECT_TRUE(press(Qt::Key_Z, Qt::ControlModifier));
    EXPECT_TRUE(window.perform("redo"));
    EXPECT_EQ(window.rootObject()->property("asked"), "undo;redo;");
    EXPECT_FALSE(window.perform("paste")) << "nobody there can";
    EXPECT_EQ(text(), "hello");
}

TEST_F(PersistentWindowTest, ClosingOnlyHidesIt) {
    window.show();
    window.setPosition(40, 50);
    window.close();
    EXPECT_FALSE(window.isVisible());
    window.show();
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(window.position(), QPoint(40, 50));
    EXPECT_EQ(text(), "hello");
}

TEST(WindowPresenter, BringsDialogsToTheFrontLastAndLeavesMinimizedWindows) {
    struct : WindowActivation {
        void bringToFront(std::uint64_t window) override { order.push_back(window); }
        std::vector<std::uint64_t> order;
    } activation;
    QWindow dialog;
    QWindow preferences;
    QWindow minimized;
    QWindow hidden;
    dialog.setFlag(Qt::Dialog);
    dialog.show();
    preferences.show();
    minimized.showMinimized();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&preferences));
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&dialog));
    presentVisibleWindows(activation);
    EXPECT_EQ(activation.order, (std::vector<std::uint64_t>{preferences.winId(), dialog.winId()}));
}

} // namespace
} // namespace kelvora
