// SPDX-License-Identifier: MIT
// norvix-desktop: a window for the person who has the modem.
#include "desktop/assistant/new_beginning.h"
#include "desktop/controller.h"
#include "desktop/plot/plot.h"
#include "desktop/window/main_window.h"

#include <QApplication>

int main(int argc, char *argv[])
{
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    const QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("norvix-desktop"));
    QApplication::setApplicationVersion(QStringLiteral(NORVIX_VERSION));
    desktop::makePlotsAccessible();
    desktop::Controller controller(QDBusConnection::systemBus());
    desktop::MainWindow window(controller);
    controller.start();
    window.show();
    if (const std::optional<desktop::HandOver> handOver = desktop::handedOver()) {
        window.goOn(*handOver);
    }
    return QApplication::exec();
}
