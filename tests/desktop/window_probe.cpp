// SPDX-License-Identifier: MIT
// A small window for the tests of the lab's desktops: what they find, press, read and see change.
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMainWindow>
#include <QMenu>
#include <QProcess>
#include <QPushButton>
#include <QSpinBox>
#include <QSystemTrayIcon>

namespace {

QIcon dot(Qt::GlobalColor colour)
{
    QPixmap pixmap(22, 22);
    pixmap.fill(colour);
    return pixmap;
}

void notify(const QString &summary)
{
    QDBusMessage call
        = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.Notifications"),
            QStringLiteral("/org/freedesktop/Notifications"),
            QStringLiteral("org.freedesktop.Notifications"), QStringLiteral("Notify"));
    call << QStringLiteral("probe") << 0U << QString() << summary << QStringLiteral("its body")
         << QStringList{QStringLiteral("retry"), QStringLiteral("Try again")}
         << QVariantMap{{QStringLiteral("urgency"), QVariant::fromValue<uchar>(2)}} << -1;
    QDBusConnection::sessionBus().asyncCall(call);
}

} // namespace

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    QMainWindow window;
    window.setWindowTitle(QStringLiteral("Probe"));
    auto *form = new QFormLayout;
    auto *name = new QLineEdit;
    auto *password = new QLineEdit;
    password->setEchoMode(QLineEdit::Password);
    form->addRow(QStringLiteral("Name"), name);
    form->addRow(QStringLiteral("Password"), password);
    auto *list = new QListWidget;
    list->setAccessibleName(QStringLiteral("Fruits"));
    list->addItems({QStringLiteral("apple"), QStringLiteral("pear"), QStringLiteral("plum")});
    form->addRow(list);
    auto *colour = new QComboBox;
    colour->addItems({QStringLiteral("black"), QStringLiteral("white"), QStringLiteral("grey")});
    form->addRow(QStringLiteral("Colour"), colour);
    auto *count = new QSpinBox;
    form->addRow(QStringLiteral("Count"), count);
    auto *sure = new QCheckBox(QStringLiteral("Sure"));
    form->addRow(sure);
    auto *greet = new QPushButton(QStringLiteral("Greet"));
    auto *elevate = new QPushButton(QStringLiteral("Elevate"));
    auto *nameless = new QPushButton;
    auto *answer = new QLabel(QStringLiteral("Nothing yet"));
    form->addRow(greet);
    form->addRow(elevate);
    form->addRow(nameless);
    form->addRow(answer);
    auto *body = new QWidget;
    body->setLayout(form);
    window.setCentralWidget(body);

    QObject::connect(greet, &QPushButton::clicked, answer, [&] {
        const QList<QListWidgetItem *> fruits = list->selectedItems();
        answer->setText(QStringLiteral("%1, %2 letters, %3, %4 %5%6")
                            .arg(name->text())
                            .arg(password->text().size())
                            .arg(fruits.isEmpty() ? QStringLiteral("none") : fruits.first()->text())
                            .arg(count->value())
                            .arg(colour->currentText(),
                                sure->isChecked() ? QStringLiteral(", sure") : QString()));
        notify(QStringLiteral("Greeted ") + name->text());
    });
    QObject::connect(elevate, &QPushButton::clicked, answer, [&] {
        auto *process = new QProcess(&window);
        QObject::connect(process, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), answer,
            [=](int status) {
                answer->setText(QStringLiteral("%1: %2").arg(status).arg(
                    QString::fromUtf8(process->readAllStandardOutput().trimmed())));
            });
        process->start(
            QStringLiteral("pkexec"), {QStringLiteral("/usr/bin/id"), QStringLiteral("-un")});
    });

    QSystemTrayIcon tray;
    QMenu menu;
    if (application.arguments().contains(QStringLiteral("--tray"))) {
        QAction *other = menu.addAction(QStringLiteral("Be red"));
        QObject::connect(other, &QAction::triggered, &tray, [&] {
            tray.setToolTip(QStringLiteral("red"));
            tray.setIcon(dot(Qt::red));
        });
        menu.addSeparator();
        menu.addAction(QStringLiteral("Quit"), &application, &QApplication::quit);
        tray.setContextMenu(&menu);
        tray.setToolTip(QStringLiteral("green"));
        tray.setIcon(dot(Qt::green));
        tray.show();
    }
    window.show();
    return QApplication::exec();
}
