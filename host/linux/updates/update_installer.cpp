// SPDX-License-Identifier: MIT
#include "host/linux/updates/update_installer.h"

#include <QProcess>
#include <QStandardPaths>

#include <csignal>
#include <utility>

namespace kelvora {
namespace {

QString locate(const std::string& program) {
    // Not in PATH: what a user has put before the system's programs shall not get to ask for an
    // administrator's password in their name.
    return QStandardPaths::findExecutable(QString::fromStdString(program),
                                          {"/usr/bin", "/bin", "/usr/local/bin"});
}

UpdateNotice noticeFor(InstallerCommand::Kind kind, int exitCode, QProcess::ExitStatus status) {
    if (status != QProcess::NormalExit || exitCode != 0) {
        return UpdateNotice::installerFailed;
    }
    return kind == InstallerCommand::Kind::installs ? UpdateNotice::installed
                                                    : UpdateNotice::handedOver;
}

} // namespace

std::vector<InstallerCommand> debianInstallers() {
    using Kind = InstallerCommand::Kind;
    return {
        // The package was verified here; PackageKit knows only the archive's keys. It asks for an
        // administrator's password through the session's agent.
        {"pkcon",
         {"--noninteractive", "--plain", "--allow-untrusted", "install-local"},
         Kind::installs},
        {"gnome-software", {"--local-filename"}, Kind::opens},
        {"plasma-discover", {"--local-filename"}, Kind::opens},
        {"gdebi-gtk", {}, Kind::opens},
        {"xdg-open", {}, Kind::opens},
    };
}

UpdateInstaller::UpdateInstaller(std::vector<InstallerCommand> commands)
    : commands_(std::move(commands)), context_(std::make_unique<QObject>()) {}

UpdateInstaller::~UpdateInstaller() = default;

void UpdateInstaller::install(const std::string& package,
                              const std::function<void(UpdateNotice)>& ended) {
    for (const InstallerCommand& command : commands_) {
        const QString program = locate(command.program);
        if (program.isEmpty()) {
            continue;
        }
        QStringList arguments;
        for (const std::string& argument : command.arguments) {
            arguments << QString::fromStdString(argument);
        }
        arguments << QString::fromStdString(package);

        // Owned by nobody until it has ended: its destructor would kill the program.
        auto* process = new QProcess;
        process->setStandardInputFile(QProcess::nullDevice());
        process->setStandardOutputFile(QProcess::nullDevice());
        process->setStandardErrorFile(QProcess::nullDevice());
        process->setChildProcessModifier([] {
            sigset_t none; // the termination signals are blocked in this program
            sigemptyset(&none);
            sigprocmask(SIG_SETMASK, &none, nullptr);
            std::signal(SIGXFSZ, SIG_DFL); // and this one is ignored
        });
        QObject::connect(process, &QProcess::finished, process, &QObject::deleteLater);
        QObject::connect(process, &QProcess::finished, context_.get(),
                         [ended, kind = command.kind](int exitCode, QProcess::ExitStatus status) {
                             ended(noticeFor(kind, exitCode, status));
                         });
        // `finished` does not come when it has not started.
        QObject::connect(process, &QProcess::errorOccurred, process,
                         [process](QProcess::ProcessError error) {
                             if (error == QProcess::FailedToStart) {
                                 process->deleteLater();
                             }
                         });
        QObject::connect(
            process, &QProcess::errorOccurred, context_.get(),
            [ended](QProcess::ProcessError error) {
                if (error == QProcess::FailedToStart) {
                    ended(UpdateNotice::installerFailed);
                }
            },
            Qt::QueuedConnection);
        process->start(program, arguments);
        return;
    }
    const auto report = [ended] { ended(UpdateNotice::noInstaller); };
    // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDeleteLeaks): Qt owns what it allocates for it
    QMetaObject::invokeMethod(context_.get(), report, Qt::QueuedConnection);
}

} // namespace kelvora
