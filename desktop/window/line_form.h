// SPDX-License-Identifier: MIT
// The values of the line.
#pragma once

#include "client/providers.h"

#include <QComboBox>
#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QVariantMap>

namespace desktop {

class Controller;
class ErrorLabel;

class LineForm : public QGroupBox
{
    Q_OBJECT

public:
    explicit LineForm(Controller &controller, QWidget *parent = nullptr);

    /// Shows the daemon's settings, unless somebody is editing.
    void showSettings(const QVariantMap &settings);

private:
    void takeProvider();
    void edit();
    void store();
    QVariantMap values() const;

    Controller &m_controller;
    const std::vector<Provider> m_providers = providersByName(); ///< as they are shown
    QComboBox *m_provider;
    QSpinBox *m_vpi;
    QSpinBox *m_vci;
    QComboBox *m_protocol;
    QLineEdit *m_service;
    QPushButton *m_store;
    ErrorLabel *m_outcome;
    bool m_isEdited = false;
};

} // namespace desktop
