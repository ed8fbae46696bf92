// SPDX-License-Identifier: MIT
// Does what a remedy's button says.
#pragma once

#include "desktop/model/deed.h"

#include <QObject>
#include <functional>

class QWidget;

namespace desktop {

class Controller;
class RightsPanel;

class DeedRunner : public QObject
{
    Q_OBJECT

public:
    /// @p panel shows what comes of deeds that take their time.
    DeedRunner(Controller &controller, RightsPanel *panel, QWidget *parent);

    /// @p title heads an explanation.
    void run(const Deed &deed, const QString &title);

signals:
    /// It was done; @p output is what it has printed.
    void done(const desktop::Deed &deed, const QByteArray &output);
    /// The program is to begin anew as a member of the group.
    void newBeginningWanted();

private:
    void startDaemon(const Deed &deed);
    void explain(const Deed &deed, const QString &title);

    Controller &m_controller;
    RightsPanel *m_panel;
    QWidget *m_window;
};

} // namespace desktop
