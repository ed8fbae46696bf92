// SPDX-License-Identifier: MIT
#include "desktop/pieces/command_box.h"

#include "client/say.h"
#include "desktop/pieces/pieces.h"

#include <QClipboard>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QHBoxLayout>

namespace desktop {

CommandBox::CommandBox(QWidget *parent)
    : QWidget(parent)
    , m_text(new QPlainTextEdit)
    , m_copy(new QPushButton(Say::tr("Copy command")))
{
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPointSizeF(this->font().pointSizeF());
    m_text->setFont(font);
    m_text->setReadOnly(true);
    m_text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_text->setTabChangesFocus(true);
    m_text->setAccessibleName(Say::tr("Command"));
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(m_text, 1, Qt::AlignTop);
    row->addWidget(m_copy, 0, Qt::AlignTop);
    comfortable(m_copy);
    connect(m_copy, &QPushButton::clicked, this,
        [this] { QGuiApplication::clipboard()->setText(m_text->toPlainText()); });
    hide();
}

void CommandBox::setCommands(const QStringList &commands)
{
    m_text->setPlainText(commands.join(QLatin1Char('\n')));
    const int frame = 2 * m_text->frameWidth() + 2 * int(m_text->document()->documentMargin());
    // One line more than there are: a long one is broken in two.
    m_text->setFixedHeight(frame + (commands.size() + 1) * m_text->fontMetrics().lineSpacing());
    setVisible(!commands.isEmpty());
}

} // namespace desktop
