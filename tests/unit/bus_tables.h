// SPDX-License-Identifier: MIT
// The members of the interface on the bus as the code declares them.
#pragma once

#include "dbus/contract.h"

#include <QByteArrayList>

/// What stands in the code for the D-Bus types of @p signature, separated by commas.
inline QByteArray typesOf(const QByteArray &signature)
{
    QByteArrayList types;
    for (const char type : signature) {
        switch (type) {
        case 'a': // of texts, the only array here
            return "QStringList";
        case 'u':
            types.append("uint");
            break;
        case 'd':
            types.append("double");
            break;
        case 'i':
            types.append("int");
            break;
        case 'b':
            types.append("bool");
            break;
        default:
            types.append("QString");
            break;
        }
    }
    return types.join(',');
}

/// The type of a method's answer.
inline QByteArray resultOf(const BusMethod &method)
{
    return *method.out == '\0' ? QByteArray("void") : typesOf(method.out);
}
