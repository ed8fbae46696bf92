// SPDX-License-Identifier: MIT
#include "desktop/window/driver_page.h"

#include "client/doctor_facts.h"
#include "client/modem_table.h"
#include "client/say.h"
#include "dbus/contract.h"
#include "desktop/controller.h"
#include "desktop/errand.h"
#include "desktop/model/headline.h"
#include "desktop/pieces/pieces.h"
#include "desktop/pieces/rights_panel.h"

#include <QDateTime>
#include <QFontDatabase>
#include <QFormLayout>
#include <QMessageBox>
#include <QScrollBar>
#include <QStyle>

namespace desktop {

namespace {

constexpr int readMs = 1000;
constexpr qint64 mostOutput = 1 << 17;

QString firmwareText(const Facts &facts)
{
    if (facts.firmware.isEmpty()) {
        return facts.driver.isEmpty() ? QString() : Say::tr("none needed");
    }
    return facts.hasFirmware ? Say::tr("%1, there").arg(facts.firmware)
                             : Say::tr("%1, missing").arg(facts.firmware);
}

/// Its text is its name for a screen reader; the label before it is its buddy.
QLabel *factLabel()
{
    auto *label = new QLabel;
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setWordWrap(true);
    return label;
}

void setFact(QLabel *label, const QString &text)
{
    label->setText(text.isEmpty() ? QStringLiteral("–") : text);
}

} // namespace

DriverPage::DriverPage(Controller &controller, QWidget *parent)
    : Page(controller, parent)
    , m_modem(factLabel())
    , m_id(factLabel())
    , m_firmware(factLabel())
    , m_driver(factLabel())
    , m_state(factLabel())
    , m_kernel(factLabel())
    , m_restart(new QPushButton(Say::tr("Restart the modem…")))
    , m_build(new QPushButton(Say::tr("Build the driver anew…")))
    , m_panel(new RightsPanel)
    , m_building(new QLabel)
    , m_progress(new QProgressBar)
    , m_help(new QPushButton(actionText(Action::CheckUp)))
    , m_outputTitle(new QLabel(Say::tr("Output of the last build:")))
    , m_output(new QPlainTextEdit)
{
    auto *facts = new QFormLayout;
    facts->setLabelAlignment(Qt::AlignTrailing);
    facts->setHorizontalSpacing(fontMetrics().height());
    facts->setRowWrapPolicy(QFormLayout::WrapLongRows);
    facts->addRow(Say::tr("Modem"), m_modem);
    facts->addRow(Say::tr("USB id"), m_id);
    facts->addRow(Say::tr("Firmware"), m_firmware);
    facts->addRow(Say::tr("Driver"), m_driver);
    facts->addRow(Say::tr("State"), m_state);
    facts->addRow(Say::tr("Kernel"), m_kernel);
    auto *buttons = new QHBoxLayout;
    for (QPushButton *button : {m_restart, m_build, m_help}) {
        buttons->addWidget(comfortable(button));
    }
    buttons->addStretch(1);
    m_building->setWordWrap(true);
    m_progress->setRange(0, 0); // nobody knows how much there is to do
    m_progress->setAccessibleName(Say::tr("The driver is being built"));
    m_outputTitle->setBuddy(m_output);
    m_output->setReadOnly(true);
    m_output->setAccessibleName(Say::tr("Output of the build"));
    m_output->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_output->setTabChangesFocus(true);
    auto *column = new QVBoxLayout(this);
    column->addLayout(facts);
    column->addLayout(buttons);
    column->addWidget(m_panel);
    column->addWidget(m_building);
    column->addWidget(m_progress);
    column->addWidget(m_outputTitle);
    column->addWidget(m_output, 100);
    column->addStretch(1); // keeps the rows together while there is no output
    m_reading.setInterval(readMs);
    connect(&m_reading, &QTimer::timeout, this, &DriverPage::lookAgain);
    connect(m_help, &QPushButton::clicked, this,
        [this] { this->controller().perform(wayOutOf(m_restartFailure)); });
    connect(&controller, &Controller::happened, this, [this](const Event &event) {
        if (const auto *failed = std::get_if<event::RequestFailed>(&event)) {
            m_restartFailure
                = failed->request == Request::RestartModem ? failed->failure : Failure();
        } else if (std::holds_alternative<event::Requested>(event)
            || std::holds_alternative<event::DaemonAppeared>(event)) {
            m_restartFailure = {};
        }
    });
    connect(m_restart, &QPushButton::clicked, this, &DriverPage::askToRestart);
    connect(m_build, &QPushButton::clicked, this, [this] {
        m_panel->perform(Verb::RestartDaemon, [this](const QByteArray &) {
            m_panel->tell(
                Say::tr("The daemon has begun anew. Where the kernel has no driver for the "
                        "modem it builds one now."));
            lookAgain();
        });
    });
    showSeen({});
}

QString DriverPage::title() const
{
    return Say::tr("Modem and driver");
}

void DriverPage::setOnScreen(bool isOnScreen)
{
    m_isOnScreen = isOnScreen;
    if (isOnScreen) {
        lookAgain();
    } else {
        m_reading.stop();
    }
}

void DriverPage::refresh()
{
    const ConnectionModel &model = controller().model();
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    const bool wasBuilding = m_buildingSince > 0;
    if (model.isBuilding != wasBuilding) {
        m_buildingSince = model.isBuilding ? now : 0;
        lookAgain();
    }
    showBuild();
    // Who wants no movement is told by the words above alone.
    const bool doesMove = style()->styleHint(QStyle::SH_Widget_Animation_Duration) > 0;
    m_progress->setVisible(model.isBuilding && doesMove);
    const bool isThere = model.daemon == DaemonPresence::There;
    m_restart->setEnabled(isThere && !model.isBuilding && !model.isRestarting);
    m_build->setEnabled(!model.isBuilding && !m_panel->isBusy());
    if (model.isBuilding && m_isOnScreen) {
        m_reading.start();
    } else {
        m_reading.stop();
    }
}

void DriverPage::showBuild()
{
    const ConnectionModel &model = controller().model();
    const Failure absence = absenceOf(model.daemon);
    QString text;
    if (absence) {
        text = requestFailureText(absence);
    } else if (model.isBuilding) {
        const qint64 since = QDateTime::currentMSecsSinceEpoch() - m_buildingSince;
        text = Say::tr("The driver is being built, for %1 already. Connections wait until then.")
                   .arg(durationText(since / 1000));
    } else if (model.isRestarting) {
        text = Say::tr("The driver is loaded anew; this takes up to a minute.");
    } else if (m_restartFailure) {
        text = Say::tr("The modem is not restarted. %1").arg(requestFailureText(m_restartFailure));
    } else if (model.buildResult) {
        text = *model.buildResult
            ? Say::tr("The build has ended without an error.")
            : Say::tr("The driver could not be built. The end of the output tells why, and the "
                      "check-up what is missing; then build it anew.");
    }
    m_building->setVisible(!text.isEmpty());
    m_building->setText(text);
    const bool isBuildVain = !model.isBuilding && model.buildResult == false;
    m_help->setVisible(absence || m_restartFailure || isBuildVain);
    m_help->setText(actionText(wayOutOf(m_restartFailure)));
}

DriverPage::Seen DriverPage::look()
{
    const Facts facts = gatherDriverFacts();
    Seen seen;
    UsbId id = facts.configured;
    if (id.vendor == 0 && !facts.modems.isEmpty()) {
        id = facts.modems.constFirst().id;
    }
    if (const ModemFamily *family = familyOf(id)) {
        seen.modem = QString::fromLatin1(family->name);
    }
    seen.id = id.vendor == 0 ? QString() : idText(id);
    seen.firmware = firmwareText(facts);
    seen.driver = facts.driver;
    seen.state = facts.driver.isEmpty() ? QString() : moduleText(facts.driverModule);
    seen.kernel = facts.kernel;
    return seen;
}

DriverPage::Output DriverPage::readOutput()
{
    const std::optional<QByteArray> text
        = lastLinesOf(QStringLiteral("/opt/norvix/driver_build.log"), mostOutput);
    return {text.has_value(), QString::fromUtf8(text.value_or(QByteArray()))};
}

void DriverPage::lookAgain()
{
    m_isReadingOwed = m_isReading;
    if (m_isReading) {
        return;
    }
    m_isReading = true;
    inBackground<Seen>(this, look, [this](const Seen &seen) { showSeen(seen); });
    inBackground<Output>(this, readOutput, [this](const Output &output) {
        m_isReading = false;
        showOutput(output);
        if (m_isReadingOwed) {
            lookAgain();
        }
    });
}

void DriverPage::showSeen(const Seen &seen)
{
    const QString &told = controller().model().modemName;
    setFact(m_modem, seen.modem.isEmpty() ? told : seen.modem);
    setFact(m_id, seen.id);
    setFact(m_firmware, seen.firmware);
    setFact(m_driver, seen.driver);
    setFact(m_state, seen.state);
    setFact(m_kernel, seen.kernel);
}

void DriverPage::showOutput(const Output &output)
{
    m_outputTitle->setText(output.isReadable
            ? Say::tr("Output of the last build:")
            : Say::tr("No driver was built yet, or its output is not readable for you."));
    m_output->setVisible(output.isReadable);
    if (m_output->toPlainText() == output.text) {
        return;
    }
    m_output->setPlainText(output.text);
    m_output->verticalScrollBar()->setValue(m_output->verticalScrollBar()->maximum());
}

void DriverPage::askToRestart()
{
    if (controller().model().state == ConnectionDown) {
        controller().request(Request::RestartModem);
        return;
    }
    auto *question = new QMessageBox(QMessageBox::Question, Say::tr("Restart the modem"),
        Say::tr("This ends the connection. The line needs up to a minute to synchronise again."),
        QMessageBox::Cancel, this);
    question->setAttribute(Qt::WA_DeleteOnClose);
    QPushButton *restart = question->addButton(Say::tr("Restart"), QMessageBox::AcceptRole);
    question->setDefaultButton(QMessageBox::Cancel);
    connect(restart, &QPushButton::clicked, this,
        [this] { controller().request(Request::RestartModem); });
    question->open();
}

} // namespace desktop
