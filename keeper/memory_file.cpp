// SPDX-License-Identifier: MIT
#include "keeper/memory_file.h"

#include "support/files/safe_file.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <unistd.h>

namespace keeper {

QByteArray Stored::textOf(const Stored &stored)
{
    QJsonObject object{
        {QStringLiteral("keep"), stored.memory.keep},
        {QStringLiteral("last_up"), stored.memory.lastUpWall},
        {QStringLiteral("modem_restarted"), stored.memory.modemRestartedWall},
        {QStringLiteral("modem_plugged"), stored.wasModemPlugged},
        {QStringLiteral("boot"), stored.boot},
        {QStringLiteral("heard_until"), stored.heardUntil},
        {QStringLiteral("limit"), double(stored.limit)},
        {QStringLiteral("billing_day"), stored.billingDay},
    };
    if (stored.memory.isWanted) {
        object.insert(QStringLiteral("wanted"), *stored.memory.isWanted);
    }
    return QJsonDocument(object).toJson();
}

Stored Stored::from(const QByteArray &text)
{
    const QJsonObject object = QJsonDocument::fromJson(text).object();
    Stored stored;
    stored.memory.keep = object.value(QStringLiteral("keep")).toBool(true);
    const QJsonValue wanted = object.value(QStringLiteral("wanted"));
    if (wanted.isBool()) {
        stored.memory.isWanted = wanted.toBool();
    }
    stored.memory.lastUpWall = qint64(object.value(QStringLiteral("last_up")).toDouble());
    stored.memory.modemRestartedWall
        = qint64(object.value(QStringLiteral("modem_restarted")).toDouble());
    stored.wasModemPlugged = object.value(QStringLiteral("modem_plugged")).toBool(true);
    stored.boot = object.value(QStringLiteral("boot")).toString();
    stored.heardUntil = qint64(object.value(QStringLiteral("heard_until")).toDouble());
    stored.limit = quint64(qMax(0.0, object.value(QStringLiteral("limit")).toDouble()));
    stored.billingDay = qBound(1, object.value(QStringLiteral("billing_day")).toInt(1), 31);
    return stored;
}

Stored readStored(const QString &path)
{
    clearUnfinished(path);
    QFile file(path);
    return Stored::from(file.open(QIODevice::ReadOnly) ? file.read(1 << 16) : QByteArray());
}

bool writeStored(const QString &path, const Stored &stored)
{
    FileAttributes attributes;
    attributes.mode = 0600;
    attributes.owner = geteuid();
    attributes.group = getegid();
    return replaceFile(path, Stored::textOf(stored), attributes);
}

} // namespace keeper
