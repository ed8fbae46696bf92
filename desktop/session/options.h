// SPDX-License-Identifier: MIT
// The words on the command line.
#pragma once

#include <QString>
#include <QStringList>

namespace desktop {

struct Options
{
    bool isBackground = false; ///< begins in the tray, where there is one
    bool isHelpWanted = false;
    bool isVersionWanted = false;
    QString error; ///< empty when all words are known
};

/// @p words without the program's name and without the toolkit's own options.
Options optionsOf(const QStringList &words);

QString usageText();

} // namespace desktop
