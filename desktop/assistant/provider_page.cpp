// SPDX-License-Identifier: MIT
#include "desktop/assistant/provider_page.h"

#include "client/keeper_state.h"
#include "client/link_facts.h"
#include "client/ppp_files.h"
#include "client/say.h"
#include "dbus/contract.h"
#include "desktop/controller.h"
#include "desktop/errand.h"
#include "desktop/pieces/pieces.h"
#include "desktop/pieces/rights_panel.h"

#include <QComboBox>
#include <QFile>
#include <QFormLayout>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>
#include <cerrno>
#include <unistd.h>

namespace desktop {

namespace {

constexpr int unset = -1;

enum class Fit
{
    Yes,
    No,
    Unknown, ///< this user may not read it
};

Fit peerFileFit(PeerKind kind, const QString &circuit)
{
    const QString path = QStringLiteral("/etc/ppp/peers/norvix");
    const std::optional<QByteArray> content = fileContent(path);
    if (!content) {
        // The folder, too, is closed to others on many systems.
        const bool isMissing
            = access(QFile::encodeName(path).constData(), F_OK) != 0 && errno != EACCES;
        return isMissing ? Fit::No : Fit::Unknown;
    }
    for (const Fact &fact : peerFaults(*content, kind, circuit)) {
        if (fact.remedy.kind != RemedyKind::SetAccount) {
            return Fit::No; // the account comes on the next page
        }
    }
    return Fit::Yes;
}

} // namespace

ProviderPage::ProviderPage(Controller &controller, Draft &draft, QWidget *parent)
    : AssistantPage(controller, draft, parent)
    , m_country(new QComboBox)
    , m_provider(new QComboBox)
    , m_protocol(new QComboBox)
    , m_vpi(new QSpinBox)
    , m_vci(new QSpinBox)
    , m_mend(new QPushButton(Say::tr("Put a fitting file in place…")))
    , m_panel(new RightsPanel)
{
    m_protocol->addItems({QStringLiteral("PPPoE"), QStringLiteral("PPPoA")});
    m_vpi->setRange(unset, 255);
    m_vci->setRange(unset, 65535);
    for (QSpinBox *value : {m_vpi, m_vci}) {
        value->setSpecialValueText(QStringLiteral(" ")); // 0 is a value that providers use
        value->setValue(unset);
    }
    auto *form = new QFormLayout;
    form->setRowWrapPolicy(QFormLayout::WrapLongRows);
    const std::initializer_list<QPair<QString, QWidget *>> rows{
        {Say::tr("&Country"), m_country},
        {Say::tr("&Provider"), m_provider},
        {Say::tr("P&rotocol"), m_protocol},
        {Say::tr("&VPI"), m_vpi},
        {Say::tr("VC&I"), m_vci},
    };
    for (const auto &row : rows) {
        comfortable(row.second);
        form->addRow(row.first, row.second);
    }
    alignNames(form);
    comfortable(m_mend);
    auto *column = new QVBoxLayout(this);
    column->addWidget(newText(Say::tr(
        "Choose country and provider: the three values below become those that it commonly uses. "
        "Where it is not in the list, or your provider's letter says otherwise, enter what the "
        "letter says: it decides.")));
    column->addLayout(form);
    column->addWidget(m_panel);
    column->addWidget(m_mend, 0, Qt::AlignLeading);
    column->addStretch(1);
    m_mend->hide();
    fillCountries();
    connect(m_country, QOverload<int>::of(&QComboBox::currentIndexChanged), this, [this] {
        if (!m_isFilling) {
            this->draft().country = m_country->currentData().toString();
            this->draft().provider.clear();
            fillProviders();
        }
    });
    connect(m_provider, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
        &ProviderPage::takeProvider);
    connect(m_protocol, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
        &ProviderPage::takeValues);
    connect(m_vpi, QOverload<int>::of(&QSpinBox::valueChanged), this, &ProviderPage::takeValues);
    connect(m_vci, QOverload<int>::of(&QSpinBox::valueChanged), this, &ProviderPage::takeValues);
    connect(m_mend, &QPushButton::clicked, this, [this] {
        m_panel->perform(Verb::MendFiles, [this](const QByteArray &) {
            m_mend->hide();
            m_panel->tell(Say::tr("The file fits now."));
        });
    });
}

void ProviderPage::fillCountries()
{
    m_isFilling = true;
    m_country->addItem(Say::tr("choose"), QString());
    for (const QString &code : countriesByName()) {
        m_country->addItem(countryName(code), code);
    }
    m_isFilling = false;
}

void ProviderPage::fillProviders()
{
    m_isFilling = true;
    m_provider->clear();
    m_provider->addItem(Say::tr("choose"), QString());
    for (const Provider &provider : providersByName()) {
        if (draft().country == QLatin1String(provider.country)) {
            m_provider->addItem(QString::fromUtf8(provider.name), QString::fromUtf8(provider.name));
        }
    }
    m_provider->setCurrentIndex(qMax(0, m_provider->findData(draft().provider)));
    m_isFilling = false;
}

void ProviderPage::takeProvider()
{
    if (m_isFilling) {
        return;
    }
    draft().provider = m_provider->currentData().toString();
    for (const Provider &provider : commonProviders()) {
        if (draft().country == QLatin1String(provider.country)
            && draft().provider == QString::fromUtf8(provider.name)) {
            draft().protocol = QLatin1String(provider.protocol);
            draft().vpi = provider.vpi;
            draft().vci = provider.vci;
            showValues();
        }
    }
}

void ProviderPage::takeValues()
{
    if (m_isFilling) {
        return;
    }
    draft().protocol = m_protocol->currentText();
    draft().vpi = m_vpi->value();
    draft().vci = m_vci->value();
    m_isFileTold = false;
    m_mend->hide();
    m_panel->clear();
}

void ProviderPage::showValues()
{
    m_isFilling = true;
    m_protocol->setCurrentText(draft().protocol);
    m_vpi->setValue(draft().vpi);
    m_vci->setValue(draft().vci);
    m_isFilling = false;
    m_isFileTold = false;
    m_mend->hide();
    m_panel->clear();
}

void ProviderPage::refresh() { }

void ProviderPage::setOnScreen(bool isOnScreen)
{
    if (!isOnScreen) {
        return;
    }
    if (draft().country.isEmpty()) {
        const QString code = QLocale::system().name().section(QLatin1Char('_'), 1);
        draft().country = m_country->findData(code) >= 0 ? code : QString();
    }
    m_isFilling = true;
    m_country->setCurrentIndex(qMax(0, m_country->findData(draft().country)));
    m_isFilling = false;
    fillProviders();
    if (draft().vpi >= 0 || draft().vci >= 0) {
        showValues();
    }
    if (controller().model().daemon != DaemonPresence::There) {
        return;
    }
    controller().bus().ask(
        setupCall(SetupMethod::GetSettings), this, [this](const BusAnswer &answer) {
            const std::optional<QVariantMap> settings = busMap(answer.value());
            if (answer.ok() && settings) {
                takeStored(*settings);
            }
        });
}

void ProviderPage::takeStored(const QVariantMap &settings)
{
    m_stored.clear();
    for (const char *key : {"protocol", "vpi", "vci"}) {
        const QString name = QLatin1String(key);
        if (settings.contains(name)) {
            m_stored.insert(name, settings.value(name));
        }
    }
    // What was entered here counts more than what is stored.
    if (draft().vpi < 0 && draft().vci < 0 && m_stored.size() == 3) {
        draft().protocol = m_stored.value(QStringLiteral("protocol")).toString();
        draft().vpi = m_stored.value(QStringLiteral("vpi")).toInt();
        draft().vci = m_stored.value(QStringLiteral("vci")).toInt();
        showValues();
    }
}

void ProviderPage::proceed()
{
    if (m_isFileTold) {
        emit goOn();
        return;
    }
    if (draft().vpi < 0 || draft().vci < 0) {
        m_panel->tell(Say::tr("Choose your provider, or enter the values of its letter. “Skip” "
                              "leaves them as they are."));
        if (draft().vpi >= 0 || draft().vci >= 0) {
            (draft().vpi < 0 ? m_vpi : m_vci)->setFocus();
        } else {
            m_country->setFocus();
        }
        return;
    }
    const QVariantMap values{{QStringLiteral("protocol"), draft().protocol},
        {QStringLiteral("vpi"), draft().vpi}, {QStringLiteral("vci"), draft().vci}};
    if (values == m_stored) {
        lookWhetherTheFileFits();
        return;
    }
    store();
}

void ProviderPage::store()
{
    m_isStoring = true;
    emit storingChanged();
    const QVariantMap values{{QStringLiteral("protocol"), draft().protocol},
        {QStringLiteral("vpi"), draft().vpi}, {QStringLiteral("vci"), draft().vci}};
    controller().bus().ask(
        storeSettingsCall(values), this, [this, values](const BusAnswer &answer) {
            m_isStoring = false;
            emit storingChanged();
            if (!answer.ok()) {
                m_panel->tell(Say::tr("The values are not stored yet. %1")
                                  .arg(requestFailureText(answer.failure)));
                return;
            }
            m_stored = values;
            lookWhetherTheFileFits();
        });
}

/// pppd reads protocol and circuit in a file that only an administrator may change.
void ProviderPage::lookWhetherTheFileFits()
{
    const bool isBridged = draft().protocol == QLatin1String("PPPoE");
    const QString circuit = QStringLiteral("%1.%2").arg(draft().vpi).arg(draft().vci);
    inBackground<Fit>(
        this,
        [isBridged, circuit] {
            return peerFileFit(isBridged ? PeerKind::Bridge : PeerKind::Atm, circuit);
        },
        [this, isBridged](Fit fit) {
            // The shipped file is one for a bridge.
            if (fit == Fit::Yes || (fit == Fit::Unknown && isBridged)) {
                emit goOn();
                return;
            }
            m_isFileTold = true;
            m_panel->tell(fit == Fit::No
                    ? Say::tr("The values are stored. A file of the system does not fit them yet; "
                              "only an administrator may change it.")
                    : Say::tr("The values are stored. They stand in a file of the system, too, "
                              "which only an administrator may change."));
            m_mend->show();
        });
}

} // namespace desktop
