// SPDX-License-Identifier: MIT
#include "daemon/setup_rules.h"

#include <algorithm>
#include <climits>

namespace {

enum class Kind
{
    Flag, ///< b on the bus
    Number, ///< i on the bus, from 0
    NumberText, ///< i on the bus, a text of digits in the file
    Protocol, ///< s, one of two
    Text, ///< s, printable
};

struct Key
{
    const char *name;
    Kind kind;
    int most; ///< the greatest number, or the most characters
    bool isSettable;
};

// The modem's identity is set by taking a modem into use, and by nothing else.
constexpr Key keys[] = {
    {"protocol", Kind::Protocol, 0, true},
    {"vpi", Kind::NumberText, 255, true},
    {"vci", Kind::NumberText, 65535, true},
    {"service", Kind::Text, 100, true},
    {"autoconnect", Kind::Flag, 0, true},
    {"connect_at_boot", Kind::Flag, 0, true},
    {"connect_at_modem_plug", Kind::Flag, 0, true},
    {"idleness", Kind::Number, INT_MAX, true},
    {"modem", Kind::Text, 0, false},
    {"vendor_id", Kind::Number, INT_MAX, false},
    {"product_id", Kind::Number, INT_MAX, false},
    {"udi", Kind::Text, 0, false},
};

const Key *keyNamed(const QString &name)
{
    const Key *key = std::find_if(std::begin(keys), std::end(keys),
        [&](const Key &candidate) { return name == QLatin1String(candidate.name); });
    return key == std::end(keys) ? nullptr : key;
}

bool isPrintable(const QString &text)
{
    return std::none_of(text.begin(), text.end(),
        [](QChar character) { return character.category() == QChar::Other_Control; });
}

QString textOf(const QVariant &stored)
{
    return stored.type() == QVariant::StringList ? stored.toStringList().join(QStringLiteral(", "))
                                                 : stored.toString();
}

/// The value for the file; invalid when @p asked is not good for @p key.
QVariant valueForFile(const Key &key, const QVariant &asked)
{
    switch (key.kind) {
    case Kind::Flag:
        return asked.type() == QVariant::Bool ? asked : QVariant();
    case Kind::Number:
    case Kind::NumberText: {
        const int number = asked.type() == QVariant::Int ? asked.toInt() : -1;
        if (number < 0 || number > key.most) {
            return QVariant();
        }
        return key.kind == Kind::Number ? QVariant(number) : QVariant(QString::number(number));
    }
    case Kind::Protocol:
        return asked == QLatin1String("PPPoE") || asked == QLatin1String("PPPoA") ? asked
                                                                                  : QVariant();
    case Kind::Text: {
        const bool isGood = asked.type() == QVariant::String && asked.toString().size() <= key.most
            && isPrintable(asked.toString());
        return isGood ? asked : QVariant();
    }
    }
    return QVariant();
}

QString expectationOf(const Key &key)
{
    switch (key.kind) {
    case Kind::Flag:
        return QStringLiteral("true or false");
    case Kind::Number:
    case Kind::NumberText:
        return QStringLiteral("a whole number from 0 to %1").arg(key.most);
    case Kind::Protocol:
        return QStringLiteral("PPPoE or PPPoA");
    case Kind::Text:
        return QStringLiteral("a text of at most %1 characters, none of them a control character")
            .arg(key.most);
    }
    return QString();
}

/// The value for the bus; invalid when the file holds something else than @p key can be.
QVariant valueForBus(const Key &key, const QVariant &stored)
{
    switch (key.kind) {
    case Kind::Flag:
        return stored.toBool();
    case Kind::Number:
    case Kind::NumberText: {
        bool isNumber = false;
        const int number = textOf(stored).toInt(&isNumber);
        return isNumber ? QVariant(number) : QVariant();
    }
    case Kind::Protocol:
    case Kind::Text:
        return textOf(stored);
    }
    return QVariant();
}

} // namespace

CheckedSettings checkedSettings(const QVariantMap &asked)
{
    CheckedSettings checked;
    for (auto setting = asked.begin(); setting != asked.end(); ++setting) {
        const Key *key = keyNamed(setting.key());
        if (key == nullptr || !key->isSettable) {
            return {{}, QStringLiteral("there is no setting to be set called ") + setting.key()};
        }
        const QVariant value = valueForFile(*key, setting.value());
        if (!value.isValid()) {
            return {{}, setting.key() + QStringLiteral(": ") + expectationOf(*key)};
        }
        checked.values.insert(setting.key(), value);
    }
    return checked;
}

QVariantMap settingsForClients(const QVariantMap &stored)
{
    QVariantMap settings;
    for (const Key &key : keys) {
        const QVariant value = stored.value(QLatin1String(key.name));
        const QVariant seen = value.isValid() ? valueForBus(key, value) : QVariant();
        if (seen.isValid()) {
            settings.insert(QLatin1String(key.name), seen);
        }
    }
    return settings;
}

QStringList settingsKeys()
{
    QStringList names;
    for (const Key &key : keys) {
        names.append(QLatin1String(key.name));
    }
    return names;
}

QString refusalOfArguments(const QStringList &arguments)
{
    const bool isGood = std::all_of(arguments.begin(), arguments.end(),
        [](const QString &argument) { return !argument.isEmpty() && isPrintable(argument); });
    return isGood ? QString() : QStringLiteral("an argument is empty or holds a control character");
}
