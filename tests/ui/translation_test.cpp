// SPDX-License-Identifier: MIT
#include "app/shell/menus.h"
#include "app/shell/permission_target.h"
#include "tests/app/running_app.h"

#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QTranslator>

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <utility>

namespace kelvora {
namespace {

/// A context and a text.
using Texts = std::set<std::pair<std::string, std::string>>;

class TranslationTest : public RunningApp {
protected:
    void add(const Menu& menu) {
        texts.emplace("Menu", menu.title);
        for (const MenuItem& item : menu.items)
            texts.emplace("Menu", item.title);
    }
    void addStatus() { texts.emplace("Status", app->model().hotkeyStatus()); }
    void addWindow() {
        const QRegularExpression call(QStringLiteral(R"re(qsTr\("([^"]*)"\))re"));
        QDirIterator files(KELVORA_UI_SOURCES, {"*.qml"}, QDir::Files,
                           QDirIterator::Subdirectories);
        while (files.hasNext()) {
            QFile file(files.next());
            ASSERT_TRUE(file.open(QIODevice::ReadOnly));
            const std::string context = files.fileInfo().baseName().toStdString();
            auto calls = call.globalMatch(QString::fromUtf8(file.readAll()));
            while (calls.hasNext())
                texts.emplace(context, calls.next().captured(1).toStdString());
        }
    }

    Texts texts;
};

TEST_F(TranslationTest, NoTextIsWithoutATranslation) {
    add(statusMenu());
    for (const Menu& menu : mainMenu())
        add(menu);
    for (const PermissionTarget target : PermissionTarget::allCases) {
        texts.emplace("PermissionTarget", target.title());
        texts.emplace("PermissionTarget", target.description());
    }
    addStatus();
    desktop.secureInput.isOn = true;
    for (const bool isEnabled : {true, false, true}) {
        app->model().setIsEnabled(isEnabled);
        addStatus();
    }
    desktop.permissions.accessibility = false;
    app->model().refreshPermissions();
    addStatus();
    addWindow();
    texts.erase({"Menu", ""});
    EXPECT_GT(texts.size(), 55U);
    for (const char* language : {"ru", "uk"}) {
        QTranslator translator;
        ASSERT_TRUE(translator.load(
            QStringLiteral(":/kelvora/translations/kelvora_%1.qm").arg(QLatin1String(language))));
        for (const auto& [context, text] : texts)
            EXPECT_FALSE(translator.translate(context.c_str(), text.c_str()).isEmpty())
                << language << ", " << context << ": " << text;
    }
}

} // namespace
} // namespace kelvora
