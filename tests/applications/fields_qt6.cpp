// SPDX-License-Identifier: MIT
// A window with one field of every kind, in Qt 6.
//     fields_qt6 entry|text|password|readonly
// The named field has the focus, and what it holds stands in the window's title.
#include "tests/applications/title_text.h"

#include <QApplication>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QVBoxLayout>
#include <QWidget>
#include <map>
#include <string>

namespace {

void keepTitle(QWidget& field, QWidget& window) {
    const auto show = [&window](const QString& text) {
        window.setWindowTitle(
            QString::fromStdString(kelvora::applications::titleFor(text.toStdString())));
    };
    if (auto* const line = qobject_cast<QLineEdit*>(&field)) {
        QObject::connect(line, &QLineEdit::textChanged, &window, show);
        show(line->text());
    } else if (auto* const lines = qobject_cast<QPlainTextEdit*>(&field)) {
        QObject::connect(lines, &QPlainTextEdit::textChanged, &window,
                         [lines, show] { show(lines->toPlainText()); });
        show(lines->toPlainText());
    }
}

} // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QWidget window;
    window.resize(700, 500);

    QLineEdit entry;
    QPlainTextEdit text;
    QLineEdit password;
    QPlainTextEdit readOnly("ghbdtn rfr ltkf");
    entry.setMaxLength(1'000'000);
    password.setEchoMode(QLineEdit::Password);
    // Keys move the caret and select in it, as in the other toolkits.
    readOnly.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);

    const std::map<std::string, QWidget*> fields{
        {"entry", &entry}, {"text", &text}, {"password", &password}, {"readonly", &readOnly}};
    QVBoxLayout layout(&window);
    for (const auto& [name, field] : fields) {
        field->setAccessibleName(QString::fromStdString(name));
        layout.addWidget(field);
    }
    QWidget* const focused = fields.at(argc > 1 ? argv[1] : "entry");
    keepTitle(*focused, window);
    focused->setFocus();
    window.show();
    return QApplication::exec();
}
