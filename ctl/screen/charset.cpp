// SPDX-License-Identifier: MIT
#include "ctl/screen/charset.h"

#include <QTextCodec>
#include <clocale>
#include <langinfo.h>

namespace {

/// The locale of one category, as the C library finds it.
QByteArray localeOf(const char *category)
{
    for (const char *const name : {"LC_ALL", category, "LANG"}) {
        QByteArray value = qgetenv(name);
        if (!value.isEmpty()) {
            return value;
        }
    }
    return "C";
}

bool isPlain(const QByteArray &locale)
{
    return locale == "C" || locale == "POSIX" || locale.startsWith("C.");
}

/// The name stands in the locale's; one without needs the locale to be installed.
QByteArray charsetName()
{
    const QByteArray locale = localeOf("LC_CTYPE").split('@').constFirst();
    const int dot = locale.indexOf('.');
    if (dot >= 0) {
        return locale.mid(dot + 1);
    }
    const bool isKnown = !isPlain(locale) && setlocale(LC_CTYPE, "") != nullptr;
    return isKnown ? QByteArray(nl_langinfo(CODESET)) : QByteArray();
}

QTextCodec *eightBitCodec()
{
    static QTextCodec *const codec = [] {
        const QByteArray name = charsetName().toUpper();
        const bool isEightBit = name.startsWith("ISO") || name.startsWith("KOI8")
            || name.startsWith("CP") || name.startsWith("WINDOWS");
        return isEightBit ? QTextCodec::codecForName(name) : nullptr;
    }();
    return codec;
}

} // namespace

bool isLocaleUtf8()
{
    const QByteArray name = charsetName().toUpper();
    return name == "UTF-8" || name == "UTF8";
}

bool isLocaleEightBit()
{
    return eightBitCodec() != nullptr;
}

QByteArray toLocale(const QString &text)
{
    return isLocaleEightBit() ? eightBitCodec()->fromUnicode(text) : text.toUtf8();
}

QString fromLocale(const QByteArray &bytes)
{
    // With its size: the short form would end at a NUL byte.
    return isLocaleEightBit() ? eightBitCodec()->toUnicode(bytes)
                              : QString::fromUtf8(bytes.constData(), bytes.size());
}

bool isLanguagePlain()
{
    return isPlain(localeOf("LC_MESSAGES"));
}
