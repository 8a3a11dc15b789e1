// SPDX-License-Identifier: MIT
#include "app/ui/preferences_model.h"

#include "app/ui/kelvora_links.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QStandardPaths>
#include <QVariantMap>

#include <string>
#include <string_view>

namespace kelvora {
namespace {

QString verbatim(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QString inUsersLanguage(const char* context, std::string_view text) {
    return QCoreApplication::translate(context, std::string(text).c_str());
}

} // namespace

PreferencesModel::PreferencesModel(AppModel& model, AddressOpener& addressOpener)
    : model_(model), addressOpener_(addressOpener),
      observation_(model.observe([this](AppModelProperty property) { announce(property); })) {}

QVariantList PreferencesModel::inputSources() const {
    QVariantList sources;
    for (const InputSourceChoice& source : model_.inputSources()) {
        sources.append(QVariantMap{{"id", verbatim(source.id)}, {"name", verbatim(source.name)}});
    }
    return sources;
}

QString PreferencesModel::firstSourceID() const {
    return verbatim(model_.firstSourceID());
}

void PreferencesModel::setFirstSourceID(const QString& id) {
    model_.setFirstSourceID(id.toStdString());
    // Also when the choice was not taken: the control that made it shows it already.
    emit firstSourceIDChanged();
}

QString PreferencesModel::secondSourceID() const {
    return verbatim(model_.secondSourceID());
}

void PreferencesModel::setSecondSourceID(const QString& id) {
    model_.setSecondSourceID(id.toStdString());
    emit secondSourceIDChanged();
}

void PreferencesModel::requestAccessibility() {
    model_.requestPermission(PermissionTarget::accessibility);
}

void PreferencesModel::requestInputMonitoring() {
    model_.requestPermission(PermissionTarget::inputMonitoring);
}

void PreferencesModel::openPrivacyPane(const QString& anchor) {
    model_.openPrivacyPane(anchor.toStdString());
}

void PreferencesModel::openHowTo() {
    addressOpener_.open(KelvoraLinks::howTo().toEncoded().toStdString());
}

QString PreferencesModel::hotkeyStatus() const {
    return inUsersLanguage("Status", model_.hotkeyStatus());
}

QString PreferencesModel::statusMessage() const {
    return verbatim(model_.statusMessage().value_or(""));
}

QVariantList PreferencesModel::permissionTargets() {
    QVariantList targets;
    for (const PermissionTarget target : PermissionTarget::allCases) {
        targets.append(QVariantMap{
            {"title", inUsersLanguage("PermissionTarget", target.title())},
            {"description", inUsersLanguage("PermissionTarget", target.description())},
            {"systemSettingsPane", verbatim(target.systemSettingsPane())},
        });
    }
    return targets;
}

QUrl PreferencesModel::applicationFile() {
    const QString name = QGuiApplication::desktopFileName();
    const QString entry = name.isEmpty()
                              ? QString()
                              : QStandardPaths::locate(QStandardPaths::ApplicationsLocation,
                                                       name + QStringLiteral(".desktop"));
    return QUrl::fromLocalFile(entry.isEmpty() ? QCoreApplication::applicationFilePath() : entry);
}

void PreferencesModel::announce(AppModelProperty property) {
    switch (property) {
    case AppModelProperty::isEnabled:
        emit isEnabledChanged();
        break;
    case AppModelProperty::sensitivity:
        emit sensitivityChanged();
        break;
    case AppModelProperty::reselectPastedText:
        emit reselectPastedTextChanged();
        break;
    case AppModelProperty::accessibilityGranted:
        emit accessibilityGrantedChanged();
        break;
    case AppModelProperty::inputMonitoringGranted:
        emit inputMonitoringGrantedChanged();
        break;
    case AppModelProperty::launchAtLogin:
        emit launchAtLoginChanged();
        break;
    case AppModelProperty::inputSources:
        emit inputSourcesChanged();
        // A control whose list is new has lost its choice.
        emit firstSourceIDChanged();
        emit secondSourceIDChanged();
        break;
    case AppModelProperty::firstSourceID:
        emit firstSourceIDChanged();
        break;
    case AppModelProperty::secondSourceID:
        emit secondSourceIDChanged();
        break;
    case AppModelProperty::statusMessage:
        emit statusMessageChanged();
        break;
    case AppModelProperty::hotkeyStatus:
        emit hotkeyStatusChanged();
        break;
    case AppModelProperty::shiftEventCount:
        emit shiftEventCountChanged();
        break;
    case AppModelProperty::doubleTapCount:
        emit doubleTapCountChanged();
        break;
    }
}

} // namespace kelvora
