// SPDX-License-Identifier: MIT
// norvix-desktop: a window for the person who has the modem.
#include "client/say.h"
#include "client/stop_signals.h"
#include "client/translation.h"
#include "desktop/assistant/new_beginning.h"
#include "desktop/controller.h"
#include "desktop/plot/plot.h"
#include "desktop/presence.h"
#include "desktop/session/instance.h"
#include "desktop/session/options.h"

#include <QApplication>
#include <QLibraryInfo>
#include <QTextStream>
#include <QTranslator>
#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr int badUsage = 2;

void print(FILE *stream, const QString &text)
{
    QTextStream(stream) << text;
}

int refuse(const QString &text, int status)
{
    print(stderr, QStringLiteral("norvix-desktop: %1\n").arg(text));
    return status;
}

/// Whether the words ask for a text only: that needs no screen.
bool isTextWanted(int argc, char *argv[])
{
    return std::any_of(argv + 1, argv + argc, [](const char *word) {
        return qstrcmp(word, "--help") == 0 || qstrcmp(word, "-h") == 0
            || qstrcmp(word, "--version") == 0;
    });
}

int showText(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    speakUsersLanguage(QStringLiteral("norvix-desktop"));
    const desktop::Options options = desktop::optionsOf(QCoreApplication::arguments().mid(1));
    print(stdout,
        options.isHelpWanted ? desktop::usageText()
                             : QStringLiteral("norvix-desktop " NORVIX_VERSION "\n"));
    return EXIT_SUCCESS;
}

/// What stands on the toolkit's own buttons and menus.
void speakToolkitsSentences()
{
    auto *translator = new QTranslator(qApp);
    if (translator->load(QStringLiteral("qtbase_") + usersLanguage(),
            QLibraryInfo::location(QLibraryInfo::TranslationsPath))) {
        QCoreApplication::installTranslator(translator);
    }
}

int showWindow(int argc, char *argv[])
{
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication::setHighDpiScaleFactorRoundingPolicy(
        Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
    // Nothing here is drawn by a graphics card, whose libraries would take most of the memory.
    qputenv("QT_XCB_GL_INTEGRATION", "none");
    StopSignals::hold();
    const QApplication application(argc, argv);
    const StopSignals stop;
    QApplication::setApplicationName(QStringLiteral("norvix-desktop"));
    QApplication::setApplicationDisplayName(QStringLiteral("Norvix"));
    QApplication::setApplicationVersion(QStringLiteral(NORVIX_VERSION));
    desktop::makePlotsAccessible();
    QApplication::setDesktopFileName(QStringLiteral("com.norvix.Desktop"));
    QApplication::setQuitOnLastWindowClosed(false); // its presence decides
    // The session's end closes no window: one that goes into the tray would seem to refuse it.
    QApplication::setFallbackSessionManagementEnabled(false);
    speakUsersLanguage(QStringLiteral("norvix-desktop"));
    speakToolkitsSentences();
    QObject::connect(&stop, &StopSignals::stopped, qApp, &QCoreApplication::quit);

    const desktop::Options options = desktop::optionsOf(QApplication::arguments().mid(1));
    if (!options.error.isEmpty()) {
        return refuse(Say::tr("%1 “norvix-desktop --help” tells what there is.").arg(options.error),
            badUsage);
    }
    const QDBusConnection session = QDBusConnection::sessionBus();
    desktop::Instance instance(session);
    switch (instance.claim(options.isBackground)) {
    case desktop::Instance::Outcome::First:
        break;
    case desktop::Instance::Outcome::Handed:
        return EXIT_SUCCESS;
    case desktop::Instance::Outcome::Unanswered:
        return refuse(Say::tr("It is running already and does not answer."), EXIT_FAILURE);
    }
    desktop::Controller controller(QDBusConnection::systemBus());
    desktop::Preferences preferences;
    desktop::Presence presence(controller, preferences, session);
    QObject::connect(
        &instance, &desktop::Instance::activated, &presence, &desktop::Presence::showWindow);
    controller.start();
    presence.start(options.isBackground);
    if (const std::optional<desktop::HandOver> handOver = desktop::handedOver()) {
        presence.window().goOn(*handOver);
    }
    return QApplication::exec();
}

} // namespace

int main(int argc, char *argv[])
{
    return isTextWanted(argc, argv) ? showText(argc, argv) : showWindow(argc, argv);
}
