// SPDX-License-Identifier: MIT
// A program of the toolkit that does nothing: what of the figures is the toolkit's own.
#include <QApplication>
#include <QTimer>

#include <cstdio>

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QTimer::singleShot(0, [] {
        std::puts("ready");
        std::fflush(stdout);
    });
    return QApplication::exec();
}
