// SPDX-License-Identifier: MIT
#include "desktop/assistant/page.h"

#include <QLabel>

namespace desktop {

AssistantPage::AssistantPage(Controller &controller, Draft &draft, QWidget *parent)
    : QWidget(parent)
    , m_controller(controller)
    , m_draft(draft)
{
}

QLabel *AssistantPage::newText(const QString &text)
{
    auto *label = new QLabel(text);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

} // namespace desktop
