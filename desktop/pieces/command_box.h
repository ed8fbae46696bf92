// SPDX-License-Identifier: MIT
// Commands for a terminal, to be read, selected and copied.
#pragma once

#include <QPlainTextEdit>
#include <QPushButton>
#include <QStringList>

namespace desktop {

class CommandBox : public QWidget
{
    Q_OBJECT

public:
    explicit CommandBox(QWidget *parent = nullptr);

    /// Shows these lines; none hide the box.
    void setCommands(const QStringList &commands);

private:
    QPlainTextEdit *m_text;
    QPushButton *m_copy;
};

} // namespace desktop
