// SPDX-License-Identifier: MIT
// How much of the main log stays.
#pragma once

#include <QByteArray>
#include <QtGlobal>

/// Decides what a log keeps of one attempt to connect: its first and its last megabyte. Knows
/// nothing of files; the log's owner tells it their size.
class LogLimit
{
public:
    /// So much of an attempt's begin and of its end stays.
    static constexpr qint64 keptBytes = 1 << 20;

    /// An attempt begins in a log of @p size bytes.
    void begin(qint64 size);

    /// Whether a log of @p size bytes is to be replaced by what thinned() makes of it.
    bool isExceeded(qint64 size) const;

    /// A log of @p size bytes could not be replaced: not to be tried at every line.
    void postpone(qint64 size) { m_notBefore = size + keptBytes; }

    /// @p log without the middle of the attempt, cut between lines. Begun by @p stamp, a line in
    /// the middle's place tells how much is missing. What went before the attempt stays.
    QByteArray thinned(const QByteArray &log, const QByteArray &stamp);

private:
    qint64 m_attempt = 0; ///< where the attempt begins
    qint64 m_headEnd = 0; ///< where its first part ends, once something is missing
    qint64 m_missing = 0;
    qint64 m_notBefore = 0;
};
