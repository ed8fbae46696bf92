// SPDX-License-Identifier: MIT
// Values over time that one can read: by eye, under the pointer, by keyboard and by ear.
#pragma once

#include "desktop/plot/plot_content.h"

#include <QWidget>

namespace desktop {

class Plot : public QWidget
{
    Q_OBJECT

public:
    explicit Plot(QWidget *parent = nullptr);

    void setContent(const PlotContent &content);
    const PlotContent &content() const { return m_content; }

    /// The point that is read out; -1 for none.
    int readPlace() const;
    /// What is read out, or else what the whole plot tells.
    QString valueText() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    struct Painter;

    PlotScale scale() const;
    double legendHeight() const;
    void readAt(std::optional<double> at);

    PlotContent m_content;
    std::optional<double> m_readAt; ///< on the axis of time
};

/// Lets accessible technology see plots; called once.
void makePlotsAccessible();

} // namespace desktop
