// SPDX-License-Identifier: MIT
#include "client/translation.h"

#include <QCoreApplication>
#include <QLocale>
#include <QTranslator>

static void useResources()
{
    Q_INIT_RESOURCE(client_translations); // the linker would leave a library's resources out
}

namespace {

void speak(const QString &name, bool isPlain)
{
    auto *translator = new QTranslator(QCoreApplication::instance());
    const QString folder = QStringLiteral(":/translations");
    const bool isTranslated
        = !isPlain && translator->load(QLocale(), name, QStringLiteral("_"), folder);
    // English has files of its own for its plurals.
    if (isTranslated || translator->load(name + QStringLiteral("_en"), folder)) {
        QCoreApplication::installTranslator(translator);
    } else {
        delete translator;
    }
}

} // namespace

void speakUsersLanguage(const QString &program, bool isPlain)
{
    useResources();
    speak(QStringLiteral("client"), isPlain);
    speak(program, isPlain);
}
