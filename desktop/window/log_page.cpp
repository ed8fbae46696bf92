// SPDX-License-Identifier: MIT
#include "desktop/window/log_page.h"

#include "client/link_facts.h"
#include "client/redaction.h"
#include "client/say.h"
#include "dbus/contract.h"
#include "desktop/controller.h"
#include "desktop/errand.h"
#include "desktop/pieces/pieces.h"

#include <QClipboard>
#include <QDir>
#include <QFileInfo>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLocale>
#include <QScrollBar>
#include <QToolButton>
#include <algorithm>
#include <sys/stat.h>
#include <unistd.h>

namespace desktop {

namespace {

constexpr int readMs = 1000;
constexpr qint64 mostText = 1 << 18;
constexpr int mostDays = 31;
const char daemonLog[] = "/opt/norvix/daemon.log";

struct Day
{
    QDate date;
    QString path;
};

/// The daily logs, newest first; none where this user may not look.
QList<Day> daysIn(const QString &folder)
{
    QList<Day> days;
    for (const QString &name : QDir(folder).entryList({QStringLiteral("*.log")}, QDir::Files)) {
        const QDate date = QLocale::c().toDate(name.chopped(4), QStringLiteral("dd-MM-yyyy"));
        if (date.isValid()) {
            days.append({date, folder + QLatin1Char('/') + name});
        }
    }
    std::sort(days.begin(), days.end(),
        [](const Day &one, const Day &other) { return one.date > other.date; });
    return days.mid(0, mostDays);
}

} // namespace

LogText readLog(const QString &path, const QString &stamp)
{
    const QByteArray name = QFile::encodeName(path);
    struct stat info = {};
    if (::stat(name.constData(), &info) != 0) {
        return {errno == EACCES ? LogText::Outcome::Forbidden : LogText::Outcome::Missing, {}, {}};
    }
    LogText log;
    log.stamp = QStringLiteral("%1 %2 %3 %4")
                    .arg(qint64(info.st_ino))
                    .arg(qint64(info.st_size))
                    .arg(qint64(info.st_mtim.tv_sec))
                    .arg(qint64(info.st_mtim.tv_nsec));
    if (log.stamp == stamp) {
        log.outcome = LogText::Outcome::Same;
        return log;
    }
    if (::access(name.constData(), R_OK) != 0) {
        log.outcome = LogText::Outcome::Forbidden;
        return log;
    }
    log.outcome = LogText::Outcome::Read;
    log.text = QString::fromUtf8(lastLinesOf(path, mostText).value_or(QByteArray()));
    log.isCut = info.st_size > mostText;
    return log;
}

QString matchingLines(const QString &text, const QString &filter)
{
    const QStringList words = filter.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    if (words.isEmpty()) {
        return text;
    }
    QStringList lines;
    for (const QString &line : text.split(QLatin1Char('\n'))) {
        const bool doesMatch = std::all_of(words.begin(), words.end(),
            [&line](const QString &word) { return line.contains(word, Qt::CaseInsensitive); });
        if (doesMatch) {
            lines.append(line);
        }
    }
    return lines.join(QLatin1Char('\n'));
}

LogPage::LogPage(Controller &controller, QWidget *parent)
    : Page(controller, parent)
    , m_which(new QComboBox)
    , m_filter(new QLineEdit)
    , m_follow(new QCheckBox(Say::tr("Follow")))
    , m_notice(new QLabel)
    , m_view(new QPlainTextEdit)
    , m_copy(new QPushButton(Say::tr("Copy report")))
{
    auto *whichLabel = new QLabel(Say::tr("Which log"), this);
    whichLabel->setBuddy(m_which); // a name of the box's own is not told to screen readers
    whichLabel->hide();
    m_which->addItem(Say::tr("Since the daemon's start"), QLatin1String(daemonLog));
    m_filter->setAccessibleName(Say::tr("Filter"));
    m_filter->setPlaceholderText(Say::tr("Filter"));
    m_filter->setClearButtonEnabled(true);
    if (auto *clear = m_filter->findChild<QToolButton *>()) {
        clear->setAccessibleName(Say::tr("Clear the filter"));
    }
    m_follow->setChecked(true);
    m_notice->setWordWrap(true);
    m_view->setReadOnly(true);
    m_view->setAccessibleName(Say::tr("Log"));
    m_view->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_view->setTabChangesFocus(true);
    m_copy->setToolTip(Say::tr("Copies what is shown, without login and password"));
    auto *top = new QHBoxLayout;
    top->addWidget(m_which);
    top->addWidget(m_filter, 1);
    top->addWidget(m_follow);
    auto *bottom = new QHBoxLayout;
    bottom->addWidget(m_notice, 1);
    bottom->addWidget(m_copy);
    auto *column = new QVBoxLayout(this);
    column->addLayout(top);
    column->addWidget(m_view, 1);
    column->addLayout(bottom);
    for (QWidget *control : std::initializer_list<QWidget *>{m_which, m_filter, m_follow, m_copy}) {
        comfortable(control);
    }
    m_reading.setInterval(readMs);
    connect(&m_reading, &QTimer::timeout, this, &LogPage::read);
    connect(m_which, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &LogPage::read);
    connect(m_filter, &QLineEdit::textChanged, this, &LogPage::showText);
    connect(m_follow, &QCheckBox::toggled, this, &LogPage::read);
    connect(m_copy, &QPushButton::clicked, this, &LogPage::copyReport);
}

QString LogPage::title() const
{
    return Say::tr("Log");
}

void LogPage::refresh() { }

void LogPage::setOnScreen(bool isOnScreen)
{
    if (isOnScreen) {
        findLogs();
        read();
        m_reading.start();
    } else {
        m_reading.stop();
    }
}

void LogPage::findLogs()
{
    inBackground<QList<Day>>(
        this, [] { return daysIn(QStringLiteral("/var/log/norvix")); },
        [this](const QList<Day> &days) {
            for (const Day &day : days) {
                if (m_which->findData(day.path) < 0) {
                    m_which->addItem(QLocale().toString(day.date, QLocale::LongFormat), day.path);
                }
            }
        });
}

/// Looks whether the log has changed. One that is not followed is read when it is chosen.
void LogPage::read()
{
    const QString path = m_which->currentData().toString();
    const bool isNew = path != m_path;
    if (m_isReading || (!isNew && !m_follow->isChecked())) {
        return;
    }
    m_isReading = true;
    inBackground<LogText>(
        this, [path, stamp = isNew ? QString() : m_log.stamp] { return readLog(path, stamp); },
        [this, path](const LogText &log) {
            m_isReading = false;
            take(path, log);
        });
}

void LogPage::take(const QString &path, const LogText &log)
{
    if (path != m_which->currentData().toString()) {
        read(); // another one was chosen meanwhile
        return;
    }
    m_path = path;
    if (log.outcome == LogText::Outcome::Same) {
        return;
    }
    m_log = log;
    switch (log.outcome) {
    case LogText::Outcome::Same:
        break;
    case LogText::Outcome::Read:
        m_notice->setText(
            log.isCut ? Say::tr("Only the end is shown; %1 has all of it.").arg(path) : QString());
        break;
    case LogText::Outcome::Missing:
        m_notice->setText(Say::tr("There is no log %1 yet.").arg(path));
        break;
    case LogText::Outcome::Forbidden:
        m_notice->setText(Say::tr(
            "You may not read %1: that is for root and the members of the group norvix. The "
            "check-up helps to become one.")
                              .arg(path));
        break;
    }
    showText();
}

void LogPage::showText()
{
    QScrollBar *bar = m_view->verticalScrollBar();
    const int place = bar->value();
    const bool wasAtEnd = place == bar->maximum();
    m_view->setPlainText(matchingLines(m_log.text, m_filter->text()));
    if (m_follow->isChecked() && wasAtEnd) {
        m_view->moveCursor(QTextCursor::End); // also where the lines are not laid out yet
    } else {
        bar->setValue(place);
    }
    m_copy->setEnabled(!m_log.text.isEmpty());
}

/// The account is asked for only to be left out.
void LogPage::copyReport()
{
    const QString text = m_view->toPlainText();
    BusCall call = daemonCall(DaemonMethod::getLoginAndPassword);
    call.timeoutMs = 5000;
    controller().bus().ask(call, this, [this, text](const BusAnswer &answer) {
        QStringList secrets;
        for (const QVariant &value : answer.values) {
            secrets += value.toStringList(); // a text alone is a list of one
        }
        QGuiApplication::clipboard()->setText(withoutAccount(text, secrets));
        m_notice->setText(answer.ok()
                ? Say::tr("Copied, without login and password.")
                : Say::tr(
                    "Copied. The daemon did not say what the login is: look whether it stands "
                    "in the copy before you give it away."));
    });
}

} // namespace desktop
