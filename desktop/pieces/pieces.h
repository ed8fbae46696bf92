// SPDX-License-Identifier: MIT
// What pages are made of.
#pragma once

#include <QFormLayout>
#include <QLabel>
#include <QPushButton>

namespace desktop {

/// A widget for a page's content that takes all of the page, and can be scrolled where that is too
/// small: nothing is cut at any size of text.
QWidget *scrolledContent(QWidget *page);

/// Of what can be hit easily: 32 pixels with the usual letters.
int comfortableHeight(const QFontMetrics &metrics);

/// Gives a control that height, or more.
template <typename Control> Control *comfortable(Control *control)
{
    control->setMinimumHeight(comfortableHeight(control->fontMetrics()));
    return control;
}

/// Puts the names of a form's rows beside the middle of their fields, which are comfortable.
void alignNames(QFormLayout *form);

/// The sentence at the top of a page.
QLabel *headingLabel(const QString &text = QString());

/// Text that breaks into lines.
QLabel *textLabel(const QString &text = QString());

/// Text that can be copied.
QLabel *valueLabel(const QString &text = QString());

/// What is wrong with what was typed; not there while nothing is.
class ErrorLabel : public QLabel
{
    Q_OBJECT

public:
    /// @p field is described by it for accessible technology.
    explicit ErrorLabel(QWidget *field = nullptr, QWidget *parent = nullptr);

    /// Tells that something is wrong; nothing for an empty text.
    void complain(const QString &text);
    /// Tells that all is well.
    void inform(const QString &text);

private:
    void tell(const QString &text, bool isComplaint);

    QWidget *m_field;
};

} // namespace desktop
