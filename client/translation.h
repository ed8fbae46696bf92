// SPDX-License-Identifier: MIT
// The user's language.
#pragma once

#include <QString>

/// From now on everything is said in the user's language: the sentences of this library, and those
/// of the program, which has them in its resources as ":/translations/PROGRAM_de.qm".
/// @p isPlain: messages stay as they are in the source, but for their plurals. Needs the
/// application object.
void speakUsersLanguage(const QString &program, bool isPlain = false);
