// SPDX-License-Identifier: MIT
// The modem families that the daemon knows.
#pragma once

#include <QList>
#include <QMultiMap>
#include <QString>

/// One catalogue record.
struct ModemInfo
{
    QString name; ///< display name of the family, as clients show it
    QString driver; ///< name of its kernel module
    QMultiMap<qint32, qint32> ids; ///< USB vendor id to product ids
};

/// A new modem that was announced and is there: what useNewModem() would take into use.
struct AnnouncedModem
{
    QString name; ///< empty: none
    int vendorId = 0;
    int productId = 0;
    QString udi;
};

/// The compiled-in records, in the order in which they are searched.
QList<ModemInfo> modemCatalogue();

/// The first record of @p modems that lists the pair of @p vendorId and @p productId; null when
/// none does. Points into @p modems.
const ModemInfo *findModem(const QList<ModemInfo> &modems, qint32 vendorId, qint32 productId);
