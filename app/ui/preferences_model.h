// SPDX-License-Identifier: MIT
#pragma once

#include "app/shell/app_model.h"
#include "host/address_opener.h"

#include <QObject>
#include <QString>
#include <QUrl>
#include <QVariantList>

namespace kelvora {

/// The program's model for QML: the same values, told of at the same times. It keeps none of them.
/// What the user sets goes to the model, and is read back from it even when it was not taken. Main
/// thread only.
class PreferencesModel final : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isEnabled READ isEnabled WRITE setIsEnabled NOTIFY isEnabledChanged)
    /// Seconds.
    Q_PROPERTY(double sensitivity READ sensitivity WRITE setSensitivity NOTIFY sensitivityChanged)
    Q_PROPERTY(
        bool launchAtLogin READ launchAtLogin WRITE setLaunchAtLogin NOTIFY launchAtLoginChanged)
    Q_PROPERTY(bool reselectPastedText READ reselectPastedText WRITE setReselectPastedText NOTIFY
                   reselectPastedTextChanged)
    /// Maps with `id` and `name`.
    Q_PROPERTY(QVariantList inputSources READ inputSources NOTIFY inputSourcesChanged)
    Q_PROPERTY(
        QString firstSourceID READ firstSourceID WRITE setFirstSourceID NOTIFY firstSourceIDChanged)
    Q_PROPERTY(QString secondSourceID READ secondSourceID WRITE setSecondSourceID NOTIFY
                   secondSourceIDChanged)
    Q_PROPERTY(
        bool accessibilityGranted READ accessibilityGranted NOTIFY accessibilityGrantedChanged)
    Q_PROPERTY(bool inputMonitoringGranted READ inputMonitoringGranted NOTIFY
                   inputMonitoringGrantedChanged)
    Q_PROPERTY(QString hotkeyStatus READ hotkeyStatus NOTIFY hotkeyStatusChanged)
    Q_PROPERTY(qint64 shiftEventCount READ shiftEventCount NOTIFY shiftEventCountChanged)
    Q_PROPERTY(qint64 doubleTapCount READ doubleTapCount NOTIFY doubleTapCountChanged)
    Q_PROPERTY(bool hasStatusMessage READ hasStatusMessage NOTIFY statusMessageChanged)
    Q_PROPERTY(QString statusMessage READ statusMessage NOTIFY statusMessageChanged)
    /// The permissions in the order of `PermissionTarget`: maps with `title` and `description`, in
    /// the user's language, and `systemSettingsPane`.
    Q_PROPERTY(QVariantList permissionTargets READ permissionTargets CONSTANT)
    /// The file that stands for the program in file managers and settings: its desktop entry, or
    /// the program itself where no entry is installed.
    Q_PROPERTY(QUrl applicationFile READ applicationFile CONSTANT)

public:
    /// Both outlive this object.
    PreferencesModel(AppModel& model, AddressOpener& addressOpener);

    [[nodiscard]] bool isEnabled() const { return model_.isEnabled(); }
    void setIsEnabled(bool isEnabled) { model_.setIsEnabled(isEnabled); }
    [[nodiscard]] double sensitivity() const { return model_.sensitivity(); }
    void setSensitivity(double seconds) { model_.setSensitivity(seconds); }
    [[nodiscard]] bool launchAtLogin() const { return model_.launchAtLogin(); }
    void setLaunchAtLogin(bool enabled) { model_.setLaunchAtLogin(enabled); }
    [[nodiscard]] bool reselectPastedText() const { return model_.reselectPastedText(); }
    void setReselectPastedText(bool reselect) { model_.setReselectPastedText(reselect); }

    [[nodiscard]] QVariantList inputSources() const;
    [[nodiscard]] QString firstSourceID() const;
    void setFirstSourceID(const QString& id);
    [[nodiscard]] QString secondSourceID() const;
    void setSecondSourceID(const QString& id);

    [[nodiscard]] bool accessibilityGranted() const { return model_.accessibilityGranted(); }
    [[nodiscard]] bool inputMonitoringGranted() const { return model_.inputMonitoringGranted(); }
    Q_INVOKABLE void requestAccessibility();
    Q_INVOKABLE void requestInputMonitoring();
    /// Opens the page of the system's privacy settings.
    Q_INVOKABLE void openPrivacyPane(const QString& anchor);
    Q_INVOKABLE void openHowTo();

    /// In the user's language.
    [[nodiscard]] QString hotkeyStatus() const;
    [[nodiscard]] qint64 shiftEventCount() const { return model_.shiftEventCount(); }
    [[nodiscard]] qint64 doubleTapCount() const { return model_.doubleTapCount(); }
    [[nodiscard]] bool hasStatusMessage() const { return model_.statusMessage().has_value(); }
    /// As the program words it; empty when there is none.
    [[nodiscard]] QString statusMessage() const;
    [[nodiscard]] static QVariantList permissionTargets();
    [[nodiscard]] static QUrl applicationFile();

signals:
    void isEnabledChanged();
    void sensitivityChanged();
    void launchAtLoginChanged();
    void reselectPastedTextChanged();
    void inputSourcesChanged();
    void firstSourceIDChanged();
    void secondSourceIDChanged();
    void accessibilityGrantedChanged();
    void inputMonitoringGrantedChanged();
    void hotkeyStatusChanged();
    void shiftEventCountChanged();
    void doubleTapCountChanged();
    void statusMessageChanged();

private:
    void announce(AppModelProperty property);

    AppModel& model_;
    AddressOpener& addressOpener_;
    AppModelObservation observation_;
};

} // namespace kelvora
