// SPDX-License-Identifier: MIT
#include "desktop/session/theme.h"

#include <QApplication>
#include <QStyleFactory>
#include <QStyleOption>

namespace desktop {

namespace {

const QString &service()
{
    static const QString name = QStringLiteral("org.freedesktop.portal.Desktop");
    return name;
}
const QString &path()
{
    static const QString name = QStringLiteral("/org/freedesktop/portal/desktop");
    return name;
}
const QString &interface()
{
    static const QString name = QStringLiteral("org.freedesktop.portal.Settings");
    return name;
}
const QString &appearance()
{
    static const QString name = QStringLiteral("org.freedesktop.appearance");
    return name;
}
const QString &colourKey()
{
    static const QString name = QStringLiteral("color-scheme");
    return name;
}
// One desktop's own, which the others' portals tell as well.
const QString &widgets()
{
    static const QString name = QStringLiteral("org.gnome.desktop.interface");
    return name;
}
const QString &movementKey()
{
    static const QString name = QStringLiteral("enable-animations");
    return name;
}

/// What the portal's color-scheme says.
enum ColourScheme : uint
{
    NoPreference = 0,
    PreferDark = 1,
    PreferLight = 2,
};

bool isDark(const QPalette &palette)
{
    return palette.color(QPalette::Window).lightness()
        < palette.color(QPalette::WindowText).lightness();
}

QPalette paletteOf(const QColor &window, const QColor &base, const QColor &text,
    const QColor &muted, const QColor &highlight, const QColor &link)
{
    QPalette palette(window); // shades of frames and grooves
    palette.setColor(QPalette::Window, window);
    palette.setColor(QPalette::WindowText, text);
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::AlternateBase, window);
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::Button, window);
    palette.setColor(QPalette::ButtonText, text);
    palette.setColor(QPalette::BrightText, text);
    palette.setColor(QPalette::ToolTipBase, base);
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::PlaceholderText, muted);
    palette.setColor(QPalette::Highlight, highlight);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, link);
    palette.setColor(QPalette::LinkVisited, link);
    for (const QPalette::ColorRole role :
        {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, muted);
    }
    return palette;
}

} // namespace

int OwnStyle::styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
    QStyleHintReturn *returned) const
{
    return m_isCalm && (hint == SH_Widget_Animation_Duration || hint == SH_Widget_Animate)
        ? 0
        : QProxyStyle::styleHint(hint, option, widget, returned);
}

void OwnStyle::drawPrimitive(PrimitiveElement element, const QStyleOption *option,
    QPainter *painter, const QWidget *widget) const
{
    const auto *box = qstyleoption_cast<const QStyleOptionButton *>(option);
    if (element != PE_IndicatorCheckBox || box == nullptr || !isDark(box->palette)) {
        QProxyStyle::drawPrimitive(element, option, painter, widget);
        return;
    }
    // The edge is a darker shade of the window's ground, which in the dark nobody sees.
    QStyleOptionButton visible = *box;
    visible.palette.setColor(QPalette::Window, box->palette.color(QPalette::PlaceholderText));
    QProxyStyle::drawPrimitive(element, &visible, painter, widget);
}

QPalette darkPalette()
{
    return paletteOf(QColor(0x2a, 0x2c, 0x2e), QColor(0x1e, 0x20, 0x22), QColor(0xf0, 0xf0, 0xf0),
        QColor(0xa8, 0xac, 0xb0), QColor(0x1f, 0x67, 0xb0), QColor(0x7a, 0xb8, 0xf5));
}

QPalette lightPalette()
{
    return paletteOf(QColor(0xef, 0xef, 0xef), QColor(0xff, 0xff, 0xff), QColor(0x1c, 0x1e, 0x20),
        QColor(0x60, 0x64, 0x68), QColor(0x1f, 0x67, 0xb0), QColor(0x1a, 0x5a, 0x9c));
}

Theme::Theme(AsyncBus &sessionBus, QObject *parent)
    : QObject(parent)
    , m_bus(sessionBus)
    , m_style(new OwnStyle(QStyleFactory::create(QApplication::style()->objectName())))
{
    QApplication::setStyle(m_style);
}

void Theme::start()
{
    QDBusConnection bus = m_bus.connection();
    if (!bus.isConnected()) {
        return;
    }
    bus.connect(service(), path(), interface(), QStringLiteral("SettingChanged"), this,
        SLOT(takeChange(QString, QString, QDBusVariant)));
    ask(appearance(), colourKey());
    ask(widgets(), movementKey());
}

void Theme::ask(const QString &space, const QString &key)
{
    BusCall call;
    call.service = service();
    call.path = path();
    call.interface = interface();
    call.method = QStringLiteral("Read");
    call.arguments = {space, key};
    call.startsService = true;
    m_bus.ask(call, this, [this, key](const BusAnswer &answer) {
        // A variant in a variant, for reasons of the portal's own.
        QVariant value = answer.value();
        while (value.canConvert<QDBusVariant>()) {
            value = value.value<QDBusVariant>().variant();
        }
        take(key, value);
    });
}

void Theme::takeChange(const QString &space, const QString &key, const QDBusVariant &value)
{
    if (space == appearance() || space == widgets()) {
        take(key, value.variant());
    }
}

void Theme::take(const QString &key, const QVariant &value)
{
    if (key == movementKey() && value.userType() == QMetaType::Bool) {
        m_style->setCalm(!value.toBool());
        return;
    }
    if (key != colourKey() || value.userType() != QMetaType::UInt) {
        return;
    }
    // The platform's own stand where they are as dark or light as is wanted.
    QApplication::setPalette(QPalette());
    const bool isPlatformDark = isDark(QApplication::palette());
    if (value.toUInt() == PreferDark && !isPlatformDark) {
        QApplication::setPalette(darkPalette());
    } else if (value.toUInt() == PreferLight && isPlatformDark) {
        QApplication::setPalette(lightPalette());
    }
}

} // namespace desktop
