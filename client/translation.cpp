// SPDX-License-Identifier: MIT
#include "client/translation.h"

#include <QCoreApplication>
#include <QLocale>
#include <QTranslator>
#include <algorithm>
#include <array>

static void useResources()
{
    Q_INIT_RESOURCE(client_translations); // the linker would leave a library's resources out
}

namespace {

constexpr std::array<const char *, 2> languages = {"en", "de"};

QString plainLanguage()
{
    return QLatin1String(languages.front());
}

void speakBy(const QString &name, const QString &language)
{
    auto *translator = new QTranslator(QCoreApplication::instance());
    // English, as it stands in the source, has files of its own only for its plurals.
    if (translator->load(QStringLiteral(":/translations/%1_%2").arg(name, language))) {
        QCoreApplication::installTranslator(translator);
    } else {
        delete translator;
    }
}

} // namespace

bool isSpoken(const QString &language)
{
    return std::any_of(languages.begin(), languages.end(),
        [&language](const char *spoken) { return language == QLatin1String(spoken); });
}

QString usersLanguage()
{
    for (const QString &liked : QLocale().uiLanguages()) {
        QString language = liked.section(QLatin1Char('-'), 0, 0);
        if (isSpoken(language)) {
            return language;
        }
    }
    return plainLanguage();
}

void speakUsersLanguage(const QString &program, bool isPlain)
{
    useResources();
    const QString language = isPlain ? plainLanguage() : usersLanguage();
    speakBy(QStringLiteral("client"), language);
    speakBy(program, language);
}

void speak(const QString &language)
{
    useResources();
    QLocale::setDefault(QLocale(language));
    speakBy(QStringLiteral("client"), language);
}
