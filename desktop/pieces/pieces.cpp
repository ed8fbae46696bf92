// SPDX-License-Identifier: MIT
#include "desktop/pieces/pieces.h"

#include "desktop/plot/colours.h"

#include <QScrollArea>
#include <QVBoxLayout>

namespace desktop {

QWidget *scrolledContent(QWidget *page)
{
    auto *area = new QScrollArea;
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setFocusPolicy(Qt::NoFocus);
    auto *content = new QWidget;
    area->setWidget(content);
    // The page's own ground, in every palette.
    area->viewport()->setAutoFillBackground(false);
    content->setAutoFillBackground(false);
    auto *layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(area);
    return content;
}

int comfortableHeight(const QFontMetrics &metrics)
{
    constexpr double letters = 2.2;
    return qRound(metrics.height() * letters);
}

void alignNames(QFormLayout *form)
{
    for (int row = 0; row < form->rowCount(); ++row) {
        if (QLayoutItem *name = form->itemAt(row, QFormLayout::LabelRole)) {
            comfortable(name->widget());
        }
    }
}

QLabel *headingLabel(const QString &text)
{
    constexpr double larger = 7; // points
    auto *label = textLabel(text);
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() + larger);
    font.setBold(true);
    label->setFont(font);
    return label;
}

QLabel *textLabel(const QString &text)
{
    auto *label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

QLabel *valueLabel(const QString &text)
{
    auto *label = textLabel(text);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    return label;
}

ErrorLabel::ErrorLabel(QWidget *field, QWidget *parent)
    : QLabel(parent)
    , m_field(field)
{
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    setVisible(false);
}

void ErrorLabel::complain(const QString &text)
{
    tell(text, true);
}

void ErrorLabel::inform(const QString &text)
{
    tell(text, false);
}

void ErrorLabel::tell(const QString &text, bool isComplaint)
{
    QPalette colours; // the application's
    if (isComplaint) {
        colours.setColor(QPalette::WindowText,
            withContrast(QColor(0xc6, 0x28, 0x28), colours.color(QPalette::Window), textContrast));
    }
    setPalette(colours);
    setText(text);
    setVisible(!text.isEmpty());
    if (m_field != nullptr) {
        m_field->setAccessibleDescription(text);
    }
}

} // namespace desktop
