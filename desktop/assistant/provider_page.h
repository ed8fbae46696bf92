// SPDX-License-Identifier: MIT
// Country and provider, and the line's values, which are the person's to change.
#pragma once

#include "client/providers.h"
#include "desktop/assistant/page.h"

#include <QVariantMap>

class QComboBox;
class QSpinBox;

namespace desktop {

class RightsPanel;

class ProviderPage : public AssistantPage
{
    Q_OBJECT

public:
    ProviderPage(Controller &controller, Draft &draft, QWidget *parent = nullptr);

    void refresh() override;
    void setOnScreen(bool isOnScreen) override;
    void proceed() override;
    bool isStoring() const override { return m_isStoring; }

private:
    void fillCountries();
    void fillProviders();
    void takeProvider();
    void takeValues();
    void showValues();
    void takeStored(const QVariantMap &settings);
    void lookWhetherTheFileFits();
    void store();

    QVariantMap m_stored; ///< what the daemon has of the line
    bool m_isFilling = false; ///< the page itself changes its controls
    bool m_isStoring = false;
    bool m_isFileTold = false; ///< the person knows that the peer file does not fit
    QComboBox *m_country;
    QComboBox *m_provider;
    QComboBox *m_protocol;
    QSpinBox *m_vpi;
    QSpinBox *m_vci;
    QPushButton *m_mend;
    RightsPanel *m_panel;
};

} // namespace desktop
