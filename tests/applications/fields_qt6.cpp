// SPDX-License-Identifier: MIT
// A window with one field of every kind, in Qt 6.
//     fields_qt6 entry|text|password|readonly [list]
// The named field has the focus, and what it holds stands in the window's title. Beside it there
// may be a list whose current row goes on with every change of it.
#include "tests/applications/title_text.h"

#include <QApplication>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QVBoxLayout>

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QWidget window;
    window.resize(700, 500);

    auto* const entry = new QLineEdit;
    auto* const password = new QLineEdit;
    auto* const readOnly = new QPlainTextEdit("ghbdtn rfr ltkf");
    auto* const text = new QPlainTextEdit;
    entry->setMaxLength(1'000'000);
    password->setEchoMode(QLineEdit::Password);
    // Keys move the caret and select in it, as in the other toolkits.
    readOnly->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);

    const std::string wanted = argc > 1 ? argv[1] : "entry";
    QVBoxLayout layout(&window);
    const auto add = [&](const char* name, auto* field, const auto& content) {
        layout.addWidget(field);
        if (name != wanted)
            return;
        const auto show = [field, content, &window] {
            window.setWindowTitle(QString::fromStdString(
                kelvora::applications::titleFor((field->*content)().toStdString())));
        };
        QObject::connect(field, &std::decay_t<decltype(*field)>::textChanged, &window, show);
        show();
        field->setFocus();
        if (argc > 2) {
            auto* const list = new QListWidget;
            list->addItems({"one", "two"});
            layout.addWidget(list);
            QObject::connect(field, &std::decay_t<decltype(*field)>::textChanged, list,
                             [list] { list->setCurrentRow(list->currentRow() == 0 ? 1 : 0); });
        }
    };
    add("entry", entry, &QLineEdit::text);
    add("password", password, &QLineEdit::text);
    add("readonly", readOnly, &QPlainTextEdit::toPlainText);
    add("text", text, &QPlainTextEdit::toPlainText);
    window.show();
    return QApplication::exec();
}
