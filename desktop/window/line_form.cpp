// SPDX-License-Identifier: MIT
#include "desktop/window/line_form.h"

#include "client/say.h"
#include "dbus/contract.h"
#include "desktop/controller.h"
#include "desktop/pieces/pieces.h"

#include <QFormLayout>
#include <algorithm>

namespace desktop {

namespace {

constexpr int unset = -1;
constexpr int mostVpi = 255;
constexpr int mostVci = 65535;
constexpr int mostService = 100;

QString protocolText(const QString &protocol)
{
    return protocol == QLatin1String("PPPoE") ? Say::tr("PPPoE (PPP over Ethernet)")
                                              : Say::tr("PPPoA (PPP over ATM)");
}

} // namespace

LineForm::LineForm(Controller &controller, QWidget *parent)
    : QGroupBox(Say::tr("Line"), parent)
    , m_controller(controller)
    , m_provider(comfortable(new QComboBox))
    , m_vpi(comfortable(new QSpinBox))
    , m_vci(comfortable(new QSpinBox))
    , m_protocol(comfortable(new QComboBox))
    , m_service(comfortable(new QLineEdit))
    , m_store(comfortable(new QPushButton(Say::tr("Store line"))))
    , m_outcome(new ErrorLabel)
{
    m_provider->addItem(Say::tr("choose to fill in its usual values"));
    for (const Provider &provider : m_providers) {
        m_provider->addItem(Say::tr("%1: %2").arg(
            countryName(QLatin1String(provider.country)), QString::fromUtf8(provider.name)));
    }
    m_provider->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_provider->setMinimumContentsLength(20);
    m_provider->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    m_vpi->setRange(unset, mostVpi);
    m_vci->setRange(unset, mostVci);
    for (QSpinBox *value : {m_vpi, m_vci}) {
        value->setSpecialValueText(QStringLiteral(" ")); // 0 is a value that providers use
        value->setValue(unset);
    }
    m_service->setMaxLength(mostService);
    for (const QString &protocol : {QStringLiteral("PPPoE"), QStringLiteral("PPPoA")}) {
        m_protocol->addItem(protocolText(protocol), protocol);
    }
    auto *form = new QFormLayout(this);
    form->setRowWrapPolicy(QFormLayout::WrapLongRows);
    form->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
    form->addRow(Say::tr("Pro&vider"), m_provider);
    form->addRow(
        textLabel(Say::tr("These are values that providers have commonly used; your provider's "
                          "letter decides.")));
    form->addRow(Say::tr("VP&I"), m_vpi);
    form->addRow(Say::tr("V&CI"), m_vci);
    form->addRow(Say::tr("P&rotocol"), m_protocol);
    form->addRow(Say::tr("Servic&e (only noted)"), m_service);
    form->addRow(m_outcome);
    form->addRow(QString(), m_store);
    alignNames(form);

    connect(m_provider, QOverload<int>::of(&QComboBox::activated), this, &LineForm::takeProvider);
    connect(m_vpi, QOverload<int>::of(&QSpinBox::valueChanged), this, &LineForm::edit);
    connect(m_vci, QOverload<int>::of(&QSpinBox::valueChanged), this, &LineForm::edit);
    connect(m_protocol, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &LineForm::edit);
    connect(m_service, &QLineEdit::textChanged, this, &LineForm::edit);
    connect(m_store, &QPushButton::clicked, this, &LineForm::store);
}

void LineForm::edit()
{
    m_isEdited = true;
    m_outcome->inform(QString());
}

void LineForm::takeProvider()
{
    const int place = m_provider->currentIndex() - 1;
    if (place < 0) {
        return;
    }
    const Provider &provider = m_providers.at(size_t(place));
    m_vpi->setValue(provider.vpi);
    m_vci->setValue(provider.vci);
    m_protocol->setCurrentIndex(m_protocol->findData(QString::fromLatin1(provider.protocol)));
    edit();
}

void LineForm::showSettings(const QVariantMap &settings)
{
    if (m_isEdited) {
        return;
    }
    const auto show = [&settings](QSpinBox *box, const char *key) {
        if (settings.contains(QLatin1String(key))) {
            box->setValue(settings.value(QLatin1String(key)).toInt());
        }
    };
    show(m_vpi, "vpi");
    show(m_vci, "vci");
    const int protocol = m_protocol->findData(settings.value(QStringLiteral("protocol")));
    m_protocol->setCurrentIndex(std::max(0, protocol));
    m_service->setText(settings.value(QStringLiteral("service")).toString());
    m_isEdited = false; // it was not a person
}

QVariantMap LineForm::values() const
{
    return {{QStringLiteral("vpi"), m_vpi->value()}, {QStringLiteral("vci"), m_vci->value()},
        {QStringLiteral("protocol"), m_protocol->currentData()},
        {QStringLiteral("service"), m_service->text()}};
}

void LineForm::store()
{
    for (QSpinBox *value : {m_vpi, m_vci}) {
        if (value->value() == unset) {
            m_outcome->complain(
                Say::tr("VPI and VCI are missing: choose your provider, or enter the values of "
                        "its letter."));
            value->setFocus();
            return;
        }
    }
    m_store->setEnabled(false);
    m_outcome->inform(Say::tr("The line is being stored."));
    const QVariantMap stored = values();
    m_controller.bus().ask(
        storeSettingsCall(stored), this, [this, stored](const BusAnswer &answer) {
            m_store->setEnabled(true);
            if (!answer.ok()) {
                m_outcome->complain(requestFailureText(answer.failure));
                return;
            }
            m_isEdited = values() != stored; // meanwhile
            m_outcome->inform(
                Say::tr("The line is stored. It counts from the next connection on."));
        });
}

} // namespace desktop
