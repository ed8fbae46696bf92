// SPDX-License-Identifier: MIT
// The user's language.
#pragma once

#include <QString>

/// The one of the languages that everything can be said in which the user likes best: "en", "de".
QString usersLanguage();

/// Whether everything can be said in a language, by its two letters.
bool isSpoken(const QString &language);

/// From now on everything is said in the user's language: the sentences of this library, and those
/// of the program, which has them in its resources as ":/translations/PROGRAM_de.qm".
/// @p isPlain: messages stay as they are in the source, but for their plurals. Needs the
/// application object.
void speakUsersLanguage(const QString &program, bool isPlain = false);

/// The same with the sentences of this library only, and with numbers and times, in a language for
/// which isSpoken().
void speak(const QString &language);
