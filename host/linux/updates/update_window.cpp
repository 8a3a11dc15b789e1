// SPDX-License-Identifier: MIT
#include "host/linux/updates/update_window.h"

#include "host/linux/updates/update_text.h"

#include <QAccessible>
#include <QApplication>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

#include <utility>

namespace kelvora {
namespace {

constexpr int textWidth = 34; // of the column, in widths of a wide letter
constexpr int noteLines = 9;

QLabel* makeLabel(QWidget* parent, const char* name) {
    auto* label = new QLabel(parent);
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::MinimumExpanding);
    return label;
}

} // namespace

UpdateWindow::UpdateWindow(std::function<void(UpdateAction)> onAction)
    : onAction_(std::move(onAction)), icon_(new QLabel(this)), heading_(makeLabel(this, "heading")),
      body_(makeLabel(this, "body")), notes_(new QPlainTextEdit(this)),
      progress_(new QProgressBar(this)), proceed_(new QPushButton(this)),
      dismiss_(new QPushButton(this)) {
    setWindowTitle(UpdateText::windowTitle());
    QFont bold = heading_->font();
    bold.setBold(true);
    bold.setPointSizeF(bold.pointSizeF() * 1.2);
    heading_->setFont(bold);
    const int column = fontMetrics().horizontalAdvance('M') * textWidth;
    heading_->setMinimumWidth(column);
    body_->setMinimumWidth(column);

    notes_->setObjectName("notes");
    notes_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    notes_->setTabChangesFocus(true);
    notes_->setAccessibleName(UpdateText::notesLabel());
    notes_->setFixedHeight(fontMetrics().lineSpacing() * noteLines);
    progress_->setObjectName("progress");
    progress_->setAccessibleName(UpdateText::progressLabel());
    progress_->setTextVisible(false);

    proceed_->setObjectName("proceed");
    dismiss_->setObjectName("dismiss");
    auto* buttons = new QDialogButtonBox(this);
    buttons->addButton(proceed_, QDialogButtonBox::AcceptRole);
    buttons->addButton(dismiss_, QDialogButtonBox::RejectRole);
    QObject::connect(proceed_, &QPushButton::clicked, this, [this] { onAction_(proceedAction_); });
    QObject::connect(dismiss_, &QPushButton::clicked, this, [this] { reject(); });
    QObject::connect(this, &QDialog::rejected, this, [this] { onAction_(UpdateAction::dismiss); });

    auto* words = new QVBoxLayout;
    words->addWidget(heading_);
    words->addWidget(body_);
    words->addWidget(progress_);
    words->addWidget(notes_);
    auto* top = new QHBoxLayout;
    top->addWidget(icon_, 0, Qt::AlignTop);
    top->addSpacing(style()->pixelMetric(QStyle::PM_LayoutHorizontalSpacing));
    top->addLayout(words, 1);
    auto* all = new QVBoxLayout(this);
    all->addLayout(top);
    all->addStretch();
    all->addWidget(buttons);
    all->setSizeConstraint(QLayout::SetMinimumSize);
}

void UpdateWindow::present(const UpdateScreen& screen, UpdatePresentation presentation) {
    setScreen(screen);
    switch (presentation) {
    case UpdatePresentation::inFront:
        comeToFront();
        return;
    case UpdatePresentation::inPlace:
    case UpdatePresentation::asReminder:
        if (!isVisible()) {
            comeAsReminder();
        }
        return;
    }
}

void UpdateWindow::comeToFront() {
    setAttribute(Qt::WA_ShowWithoutActivating, false);
    showNormal();
    raise();
    activateWindow();
}

void UpdateWindow::comeAsReminder() {
    setAttribute(Qt::WA_ShowWithoutActivating, true);
    show();
    QApplication::alert(this);
}

void UpdateWindow::setScreen(const UpdateScreen& screen) {
    const UpdateText text = UpdateText::of(screen);
    heading_->setText(text.heading);
    body_->setText(text.body);
    setProgress(screen);
    if (kind_ == screen.index() && !std::holds_alternative<NoticeScreen>(screen)) {
        return; // only figures have changed: neither size nor focus may jump
    }
    kind_ = screen.index();
    setAccessibleDescription(text.body);
    body_->setVisible(!text.body.isEmpty());
    setIcon(screen);

    const auto* offer = std::get_if<OfferScreen>(&screen);
    notes_->setPlainText(offer ? QString::fromStdString(offer->update.notes) : QString());
    notes_->setVisible(offer && !offer->update.notes.empty());

    proceedAction_ = offer ? UpdateAction::install : UpdateAction::retry;
    proceed_->setText(text.proceed);
    proceed_->setVisible(!text.proceed.isEmpty());
    dismiss_->setText(text.dismiss);
    QPushButton* main = text.proceed.isEmpty() ? dismiss_ : proceed_;
    main->setDefault(true);
    main->setFocus();
    layout()->activate();
    adjustSize();

    QAccessibleEvent change(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&change);
}

void UpdateWindow::setProgress(const UpdateScreen& screen) {
    if (const auto* downloading = std::get_if<DownloadingScreen>(&screen)) {
        progress_->setRange(0, 100);
        progress_->setValue(static_cast<int>(downloading->received * 100 / downloading->size));
        progress_->setVisible(true);
        return;
    }
    progress_->setRange(0, 0); // at work, without a measure
    progress_->setVisible(std::holds_alternative<CheckingScreen>(screen) ||
                          std::holds_alternative<InstallingScreen>(screen));
}

void UpdateWindow::setIcon(const UpdateScreen& screen) {
    const auto* notice = std::get_if<NoticeScreen>(&screen);
    const bool isWarning = notice && isWorthRetrying(notice->notice);
    const int size = style()->pixelMetric(QStyle::PM_MessageBoxIconSize);
    const QIcon icon = isWarning || windowIcon().isNull()
                           ? style()->standardIcon(isWarning ? QStyle::SP_MessageBoxWarning
                                                             : QStyle::SP_MessageBoxInformation)
                           : windowIcon();
    icon_->setPixmap(icon.pixmap(size, size));
}

} // namespace kelvora
