// SPDX-License-Identifier: MIT
#include "desktop/model/tray_facts.h"

#include "client/say.h"
#include "dbus/contract.h"

namespace desktop {

QString trayToolTip(const ConnectionModel &model, qint64 now)
{
    const Headline headline = headlineOf(model, now);
    QStringList lines = {headline.title};
    if (!headline.reason.isEmpty()) {
        lines.append(headline.reason);
    }
    if (!model.address.isEmpty() && model.address != QLatin1String(Bus::none)) {
        lines.append(Say::tr("Address: %1").arg(model.address));
    }
    if (!model.modemName.isEmpty()) {
        lines.append(Say::tr("Modem: %1").arg(model.modemName));
    }
    return lines.join(QLatin1Char('\n'));
}

QString quitText(const ConnectionModel &model)
{
    return model.state == ConnectionUp ? Say::tr("Quit (the connection stays)") : Say::tr("Quit");
}

} // namespace desktop
