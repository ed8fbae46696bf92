// SPDX-License-Identifier: MIT
// Whether everything that a page says has room: in German at one and a half times the size, and
// from right to left.
#include "client/translation.h"
#include "dbus/contract.h"
#include "desktop/assistant/account_page.h"
#include "desktop/assistant/connect_page.h"
#include "desktop/assistant/modem_page.h"
#include "desktop/assistant/permission_page.h"
#include "desktop/assistant/provider_page.h"
#include "desktop/controller.h"
#include "desktop/session/preferences.h"
#include "desktop/window/account_line_page.h"
#include "desktop/window/checkup_page.h"
#include "desktop/window/connection_page.h"
#include "desktop/window/driver_page.h"
#include "desktop/window/history_page.h"
#include "desktop/window/log_page.h"
#include "desktop/window/preferences_page.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QTest>
#include <functional>

using namespace desktop;

namespace {

using Make = std::function<QWidget *(Controller &)>;

template <typename Made> Make page()
{
    return [](Controller &controller) -> QWidget * { return new Made(controller); };
}

template <typename Made> Make assistantPage()
{
    return [](Controller &controller) -> QWidget * {
        static Draft draft;
        return new Made(controller, draft);
    };
}

/// As long as a person may see them: what is known, what is not, and what has failed.
const QVector<QVector<Event>> &situations()
{
    static const event::RequestFailed refused{
        Request::RestartModem, {FailureKind::NotPermitted, {}}};
    static const QVector<QVector<Event>> all{
        {event::DaemonLeft()},
        {event::DaemonAppeared(), event::DaemonSilent()},
        {event::DaemonAppeared(),
            event::DaemonTold{QLatin1String(DaemonSignal::connectionState), {ConnectionDown}},
            event::DaemonTold{QLatin1String(DaemonSignal::modemPlugged),
                {QStringLiteral("Thomson Speedtouch 330")}},
            refused},
        {event::DaemonAppeared(),
            event::DaemonTold{QLatin1String(DaemonSignal::connectionEstablished), {}},
            event::DaemonTold{QLatin1String(DaemonSignal::settingOpenDNS), {false}}},
    };
    return all;
}

QString complaint(const QWidget *widget, const QSize &wanted)
{
    const auto *label = qobject_cast<const QLabel *>(widget);
    const auto *button = qobject_cast<const QAbstractButton *>(widget);
    return QStringLiteral("“%1” has %2 x %3 of %4 x %5")
        .arg(label != nullptr ? label->text() : button->text())
        .arg(widget->width())
        .arg(widget->height())
        .arg(wanted.width())
        .arg(wanted.height());
}

/// What has less room than its words need.
QStringList cutOff(const QWidget &page)
{
    QStringList found;
    for (const QWidget *widget : page.findChildren<QWidget *>()) {
        if (!widget->isVisibleTo(&page)) {
            continue;
        }
        const auto *label = qobject_cast<const QLabel *>(widget);
        QSize wanted;
        if (label != nullptr && !label->text().isEmpty()) {
            wanted = label->wordWrap()
                ? QSize(label->minimumSizeHint().width(), label->heightForWidth(label->width()))
                : label->sizeHint();
        } else if (qobject_cast<const QAbstractButton *>(widget) != nullptr
            && !qobject_cast<const QAbstractButton *>(widget)->text().isEmpty()) {
            wanted = widget->minimumSizeHint();
        }
        if (widget->width() < wanted.width() || widget->height() < wanted.height()) {
            found.append(complaint(widget, wanted));
        }
    }
    return found;
}

} // namespace

Q_DECLARE_METATYPE(Make)

class LayoutTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
        speakUsersLanguage(QStringLiteral("norvix-desktop"));
        QCOMPARE(QCoreApplication::translate("Say", "Disconnect"), QStringLiteral("Trennen"));
        QFont large = QApplication::font();
        large.setPointSizeF(large.pointSizeF() * 1.5);
        QApplication::setFont(large);
    }

    void noPartOfAPageIsAWindowForAMoment()
    {
        struct Watch : QObject
        {
            QStringList windows;
            bool eventFilter(QObject *watched, QEvent *event) override
            {
                const auto *widget = qobject_cast<QWidget *>(watched);
                if (event->type() == QEvent::Show && widget != nullptr && widget->isWindow()) {
                    windows.append(QString::fromLatin1(widget->metaObject()->className()));
                }
                return false;
            }
        } watch;
        Controller controller{QDBusConnection(QStringLiteral("none"))};
        qApp->installEventFilter(&watch);
        ConnectionPage page(controller);
        page.refresh();
        for (const Event &event : situations().last()) {
            controller.take(event);
        }
        page.refresh();
        QCOMPARE(watch.windows.join(QLatin1Char(' ')), QString());
    }

    void everythingHasRoom_data()
    {
        QTest::addColumn<Make>("make");
        QTest::addColumn<Qt::LayoutDirection>("direction");
        const QVector<QPair<const char *, Make>> pages{
            {"connection", page<ConnectionPage>()},
            {"history", page<HistoryPage>()},
            {"check-up", page<CheckupPage>()},
            {"account and line", page<AccountLinePage>()},
            {"modem and driver", page<DriverPage>()},
            {"log", page<LogPage>()},
            {"preferences",
                [](Controller &controller) -> QWidget * {
                    static Preferences preferences;
                    return new PreferencesPage(controller, preferences);
                }},
            {"assistant: permission", assistantPage<PermissionPage>()},
            {"assistant: modem", assistantPage<ModemPage>()},
            {"assistant: provider", assistantPage<ProviderPage>()},
            {"assistant: account", assistantPage<AccountPage>()},
            {"assistant: connect", assistantPage<ConnectPage>()},
        };
        for (const auto &[name, make] : pages) {
            QTest::newRow(name) << make << Qt::LeftToRight;
            QTest::newRow(
                qPrintable(QStringLiteral("%1, from right to left").arg(QLatin1String(name))))
                << make << Qt::RightToLeft;
        }
    }
    void everythingHasRoom()
    {
        QFETCH(Make, make);
        QFETCH(Qt::LayoutDirection, direction);
        QApplication::setLayoutDirection(direction);
        for (const QVector<Event> &situation : situations()) {
            Controller controller{QDBusConnection(QStringLiteral("none"))};
            const std::unique_ptr<QWidget> made(make(controller));
            // Two thirds of a small screen; where a page needs more, its window is wider than that.
            made->resize(700, 600);
            made->show();
            for (const Event &event : situation) {
                controller.take(event);
            }
            if (auto *page = qobject_cast<Page *>(made.get())) {
                page->refresh();
            } else if (auto *step = qobject_cast<AssistantPage *>(made.get())) {
                step->refresh();
            }
            QCoreApplication::processEvents();
            const QString tooSmall = cutOff(*made).join(QLatin1Char('\n'));
            QVERIFY2(tooSmall.isEmpty(), qPrintable(tooSmall));
            QVERIFY2(made->width() <= 900, qPrintable(QString::number(made->width())));
        }
    }
};

QTEST_MAIN(LayoutTest)
#include "layout_test.moc"
