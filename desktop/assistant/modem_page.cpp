// SPDX-License-Identifier: MIT
#include "desktop/assistant/modem_page.h"

#include "client/keeper_state.h"
#include "client/say.h"
#include "dbus/contract.h"
#include "desktop/controller.h"
#include "desktop/errand.h"
#include "desktop/pieces/deed_runner.h"
#include "desktop/pieces/pieces.h"
#include "desktop/pieces/rights_panel.h"

#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>

namespace desktop {

namespace {

constexpr int betweenLooksMs = 1500;
// Drivers and firmware are installed by hand; nobody expects to see that at once.
constexpr qint64 betweenThoroughLooksMs = 10000;

bool isSame(const UsbModem &one, const UsbModem &other)
{
    return one.id.vendor == other.id.vendor && one.id.product == other.id.product
        && one.port == other.port;
}

bool isAmong(const UsbModem &modem, const QList<UsbModem> &modems)
{
    return std::any_of(modems.begin(), modems.end(),
        [&modem](const UsbModem &other) { return isSame(modem, other); });
}

bool areSame(const QList<UsbModem> &one, const QList<UsbModem> &other)
{
    return one.size() == other.size()
        && std::all_of(
            one.begin(), one.end(), [&](const auto &modem) { return isAmong(modem, other); });
}

} // namespace

ModemPage::ModemPage(Controller &controller, Draft &draft, QWidget *parent)
    : AssistantPage(controller, draft, parent)
    , m_list(new QListWidget)
    , m_text(newText(Say::tr("Looking for the modem…")))
    , m_button(new QPushButton)
    , m_objection(newText())
    , m_panel(new RightsPanel)
    , m_runner(new DeedRunner(controller, m_panel, this))
{
    m_list->setAccessibleName(Say::tr("Modems that are plugged in"));
    m_list->setMaximumHeight(m_list->fontMetrics().height() * 5);
    comfortable(m_button);
    m_button->hide();
    auto *column = new QVBoxLayout(this);
    column->addWidget(newText(Say::tr("These modems are plugged in:")));
    column->addWidget(m_list);
    column->addWidget(m_text);
    column->addWidget(m_button, 0, Qt::AlignLeading);
    column->addWidget(m_panel);
    column->addWidget(m_objection);
    column->addStretch(1);
    m_objection->hide();
    m_clock.setInterval(betweenLooksMs);
    connect(&m_clock, &QTimer::timeout, this, &ModemPage::look);
    connect(m_button, &QPushButton::clicked, this, [this] {
        if (m_advice.standing == ModemStanding::Announced) {
            adopt();
        } else {
            m_runner->run(m_deed, stepTitle(AssistantStep::Modem));
        }
    });
    connect(m_runner, &DeedRunner::done, this, [this] {
        m_looked.invalidate();
        look();
    });
    connect(m_panel, &RightsPanel::busyChanged, this, &ModemPage::refresh);
}

void ModemPage::setOnScreen(bool isOnScreen)
{
    m_isNextWanted = false;
    m_objection->hide();
    if (isOnScreen) {
        m_looked.invalidate();
        m_clock.start();
        look();
    } else {
        m_clock.stop();
        m_system.reset(); // what comes while nobody looks was there for us
        m_came.invalidate();
    }
}

void ModemPage::look()
{
    askWhatIsInUse();
    if (m_isLooking) {
        return;
    }
    m_isLooking = true;
    const bool isThorough
        = !m_system || !m_looked.isValid() || m_looked.hasExpired(betweenThoroughLooksMs);
    const Facts before = m_system.value_or(Facts());
    inBackground<std::optional<Facts>>(
        this,
        [isThorough, before]() -> std::optional<Facts> {
            if (!isThorough && areSame(pluggedModems(), before.modems)) {
                return std::nullopt;
            }
            return gatherDriverFacts();
        },
        [this](const std::optional<Facts> &system) {
            m_isLooking = false;
            if (system && m_clock.isActive()) {
                take(*system);
            }
            refresh();
        });
}

void ModemPage::askWhatIsInUse()
{
    if (m_isAsking || controller().model().daemon != DaemonPresence::There) {
        return;
    }
    m_isAsking = true;
    controller().bus().ask(
        setupCall(SetupMethod::GetSettings), this, [this](const BusAnswer &answer) {
            m_isAsking = false;
            m_isInUseKnown = true;
            const std::optional<QVariantMap> settings = busMap(answer.value());
            if (answer.ok() && settings) {
                m_inUse = {settings->value(QStringLiteral("vendor_id")).toInt(),
                    settings->value(QStringLiteral("product_id")).toInt()};
            }
            refresh();
        });
}

void ModemPage::take(const Facts &system)
{
    const QList<UsbModem> before = m_system ? m_system->modems : system.modems;
    const bool hasCome = std::any_of(system.modems.begin(), system.modems.end(),
        [&before](const UsbModem &modem) { return !isAmong(modem, before); });
    if (hasCome) {
        m_came.start();
    }
    const bool isNew = !m_system || !areSame(before, system.modems);
    m_system = system;
    m_looked.start();
    if (isNew) {
        showList();
    }
}

void ModemPage::showList()
{
    m_list->clear();
    for (const UsbModem &modem : m_system->modems) {
        m_list->addItem(QStringLiteral("%1 (%2)").arg(
            QString::fromLatin1(modem.family->name), idText(modem.id)));
    }
    if (m_list->count() == 0) {
        m_list->addItem(Say::tr("none"));
    }
}

void ModemPage::refresh()
{
    if (!m_system) {
        return;
    }
    const ConnectionModel &model = controller().model();
    if (model.daemon == DaemonPresence::There && !m_isInUseKnown) {
        askWhatIsInUse(); // until then a modem that is in use would seem to be a new one
        return;
    }
    ModemFacts facts;
    facts.system = *m_system;
    facts.system.configured = m_inUse;
    facts.system.isCompiling = model.isBuilding;
    facts.daemon = model.daemon;
    facts.announced = model.announcedModem;
    facts.isSeen = model.isModemPlugged;
    if (m_came.isValid()) {
        facts.pluggedForMs = m_came.elapsed();
    }
    const ModemStanding before = m_advice.standing;
    m_advice = modemAdviceOf(facts);
    if (m_advice.standing != before) {
        m_objection->hide();
    }
    m_text->setText(m_advice.text);
    m_deed = deedOf(m_advice.remedy);
    const bool canAdopt = m_advice.standing == ModemStanding::Announced;
    m_button->setText(canAdopt ? Say::tr("Take it into use") : m_deed.button);
    m_button->setVisible(canAdopt || m_deed.kind != DeedKind::None);
    m_button->setEnabled(!m_isAdopting && !m_panel->isBusy());
}

void ModemPage::proceed()
{
    switch (m_advice.standing) {
    case ModemStanding::Announced:
        m_isNextWanted = true;
        adopt();
        return;
    case ModemStanding::Ready:
    case ModemStanding::Looking:
        emit goOn();
        return;
    default:
        m_objection->setText(Say::tr("No modem is ready yet. “Skip” goes on without one."));
        m_objection->show();
    }
}

/// Asks once more whether there is a new modem: without one the daemon would forget the one that
/// it knows.
void ModemPage::adopt()
{
    if (m_isAdopting) {
        return;
    }
    m_isAdopting = true;
    emit storingChanged();
    m_panel->clear();
    refresh();
    AsyncBus &bus = controller().bus();
    bus.ask(setupCall(SetupMethod::GetAnnouncedModem), this, [=, &bus](const BusAnswer &modem) {
        if (!modem.ok() || modem.value().toString().isEmpty()) {
            endAdopting(modem.ok() ? Say::tr("The modem is not there any more. Plug it in again.")
                                   : requestFailureText(modem.failure));
            return;
        }
        bus.ask(daemonCall(DaemonMethod::useNewModem), this, [=](const BusAnswer &answer) {
            if (answer.ok()) {
                askWhatIsInUse();
            }
            endAdopting(answer.ok() ? QString() : requestFailureText(answer.failure));
        });
    });
}

/// complaint: why the modem is not in use; empty when it is.
void ModemPage::endAdopting(const QString &complaint)
{
    const bool doesGoOn = m_isNextWanted && complaint.isEmpty();
    m_isAdopting = false;
    m_isNextWanted = false;
    m_panel->tell(complaint);
    refresh();
    emit storingChanged();
    if (doesGoOn) {
        emit goOn();
    }
}

} // namespace desktop
