// SPDX-License-Identifier: MIT
#include <QApplication>
#include <QNetworkProxy>

#include <gtest/gtest.h>

#ifdef __SANITIZE_THREAD__
// Qt's own threads synchronise in ways that the sanitizer cannot see in libraries that were not
// built with it. What is tested here has no thread of its own.
extern "C" const char* __tsan_default_suppressions() {
    return "race:libQt6Core.so\nrace:libQt6Gui.so\nrace:libQt6Network.so\n"
           "race:libqopensslbackend.so\nrace:libssl.so\nrace:libcrypto.so\n";
}
// QProcess starts programs with a fork that shares memory, which is taken for this process's own.
extern "C" const char* __tsan_default_options() {
    return "die_after_fork=0";
}
#endif

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QNetworkProxy::setApplicationProxy(QNetworkProxy::NoProxy);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
