// SPDX-License-Identifier: MIT
// What the fuzz targets share: cutting their input into the arguments of what they try.
#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <cstdlib>

inline void require(bool holds)
{
    if (!holds) {
        abort();
    }
}

/// An input, taken from its beginning: lines, and what is left behind them.
class FuzzInput
{
public:
    FuzzInput(const uint8_t *data, size_t size)
        : m_rest(reinterpret_cast<const char *>(data), int(size))
    {
    }

    QByteArray line()
    {
        const int end = m_rest.indexOf('\n');
        const QByteArray line = end < 0 ? m_rest : m_rest.left(end);
        m_rest.remove(0, end < 0 ? m_rest.size() : end + 1);
        return line;
    }

    QString textLine() { return QString::fromUtf8(line()); }
    int number() { return line().toInt(); }
    const QByteArray &rest() const { return m_rest; }
    QByteArrayList lines() const { return m_rest.split('\n'); }

    QStringList textLines() const
    {
        QStringList texts;
        for (const QByteArray &line : lines()) {
            texts.append(QString::fromUtf8(line));
        }
        return texts;
    }

private:
    QByteArray m_rest;
};
