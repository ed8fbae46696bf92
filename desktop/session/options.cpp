// SPDX-License-Identifier: MIT
#include "desktop/session/options.h"

#include "client/say.h"

namespace desktop {

Options optionsOf(const QStringList &words)
{
    Options options;
    for (const QString &word : words) {
        if (word == QLatin1String("--background")) {
            options.isBackground = true;
        } else if (word == QLatin1String("--help") || word == QLatin1String("-h")) {
            options.isHelpWanted = true;
        } else if (word == QLatin1String("--version")) {
            options.isVersionWanted = true;
        } else if (options.error.isEmpty()) {
            options.error = word.startsWith(QLatin1Char('-'))
                ? Say::tr("There is no option “%1”.").arg(word)
                : Say::tr("“%1” is not understood: no file or address is taken.").arg(word);
        }
    }
    return options;
}

QString usageText()
{
    return Say::tr(
        "usage: norvix-desktop [--background]\n"
        "\n"
        "Shows the window of the USB ADSL modem. Where it is open already, it comes to the "
        "front.\n"
        "\n"
        "  --background   begin in the tray; where there is none, the window is shown\n"
        "  --help         show this text\n"
        "  --version      show the version\n");
}

} // namespace desktop
