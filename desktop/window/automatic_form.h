// SPDX-License-Identifier: MIT
// When a connection begins, and comes back, by itself.
#pragma once

#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QVariantMap>

namespace desktop {

struct BusCall;
class Controller;
class ErrorLabel;

class AutomaticForm : public QGroupBox
{
    Q_OBJECT

public:
    explicit AutomaticForm(Controller &controller, QWidget *parent = nullptr);

    /// Shows the daemon's settings, but where a change is under way.
    void showSettings(const QVariantMap &settings);
    /// Shows what the model knows of the keeper.
    void refresh();

private:
    struct Switch
    {
        QCheckBox *box;
        ErrorLabel *error;
        bool isStored = false; ///< what is stored, as well as known
        int underWay = 0; ///< changes
    };

    void show(Switch &shown, bool isOn);
    void store(Switch &changed, const BusCall &call, bool isOn);

    Controller &m_controller;
    Switch m_boot;
    Switch m_plug;
    Switch m_keep;
    QLabel *m_keeperAway;
    QLabel *m_idle;
};

} // namespace desktop
