// SPDX-License-Identifier: MIT
#include "desktop/window/automatic_form.h"

#include "client/say.h"
#include "dbus/contract.h"
#include "desktop/controller.h"
#include "desktop/pieces/pieces.h"

#include <QVBoxLayout>

namespace desktop {

namespace {

QString idleText(int idleness)
{
    return idleness > 0
        ? Say::tr("An idle time of %1 is stored. Nothing acts on it: a connection that somebody "
                  "wants stays.")
              .arg(idleness)
        : QString();
}

} // namespace

AutomaticForm::AutomaticForm(Controller &controller, QWidget *parent)
    : QGroupBox(Say::tr("Automatic connection"), parent)
    , m_controller(controller)
    , m_boot{new QCheckBox(Say::tr("Connect when the computer &starts")), nullptr}
    , m_plug{new QCheckBox(Say::tr("Connect when the &modem is plugged in")), nullptr}
    , m_keep{new QCheckBox(Say::tr("Connect again a&fter a loss")), nullptr}
    , m_keeperAway(
          textLabel(Say::tr("The keeper, which does that, is not running. The check-up helps.")))
    , m_idle(textLabel())
{
    auto *column = new QVBoxLayout(this);
    for (Switch *each : {&m_boot, &m_plug, &m_keep}) {
        comfortable(each->box);
        each->error = new ErrorLabel(each->box);
        column->addWidget(each->box);
        column->addWidget(each->error);
    }
    column->addWidget(m_keeperAway);
    column->addWidget(m_idle);
    m_idle->setVisible(false);

    // By what becomes of a switch: accessible technology toggles it without a click.
    connect(m_boot.box, &QCheckBox::toggled, this, [this](bool isOn) {
        store(m_boot, storeSettingsCall({{QStringLiteral("connect_at_boot"), isOn}}), isOn);
    });
    // One for a modem that is adopted, one for the modem in use: nobody wants them apart.
    connect(m_plug.box, &QCheckBox::toggled, this, [this](bool isOn) {
        store(m_plug,
            storeSettingsCall({{QStringLiteral("connect_at_modem_plug"), isOn},
                {QStringLiteral("autoconnect"), isOn}}),
            isOn);
    });
    connect(m_keep.box, &QCheckBox::toggled, this,
        [this](bool isOn) { store(m_keep, keeperCall(KeeperMethod::SetKeep, {isOn}), isOn); });
}

void AutomaticForm::show(Switch &shown, bool isOn)
{
    shown.isStored = isOn;
    if (shown.underWay == 0) {
        const QSignalBlocker blocker(shown.box);
        shown.box->setChecked(isOn);
    }
}

void AutomaticForm::showSettings(const QVariantMap &settings)
{
    show(m_boot, settings.value(QStringLiteral("connect_at_boot")).toBool());
    show(m_plug, settings.value(QStringLiteral("autoconnect")).toBool());
    const QString idle = idleText(settings.value(QStringLiteral("idleness")).toInt());
    m_idle->setText(idle);
    m_idle->setVisible(!idle.isEmpty());
}

void AutomaticForm::refresh()
{
    const std::optional<KeeperState> &keeper = m_controller.model().keeper;
    m_keep.box->setEnabled(keeper.has_value());
    m_keeperAway->setVisible(!keeper.has_value());
    show(m_keep, keeper && keeper->isKeeping);
}

void AutomaticForm::store(Switch &changed, const BusCall &call, bool isOn)
{
    ++changed.underWay;
    changed.error->inform(QString());
    m_controller.bus().ask(call, this, [this, &changed, isOn](const BusAnswer &answer) {
        --changed.underWay;
        if (answer.ok()) {
            changed.isStored = isOn;
        } else {
            changed.error->complain(requestFailureText(answer.failure));
        }
        show(changed, changed.isStored);
    });
}

} // namespace desktop
