// SPDX-License-Identifier: MIT
// Cuts a byte stream into lines.
#pragma once

#include <QByteArray>
#include <QByteArrayList>

/// Takes a stream in pieces of any size and gives its lines, without their line feed. A line longer
/// than the limit is given once, shortened to the limit, so that memory stays bounded whatever a
/// child prints.
class LineCutter
{
public:
    static constexpr int maxLineLength = 64 * 1024;

    /// The lines that @p bytes completes, in order.
    QByteArrayList feed(const QByteArray &bytes);

    /// What stands after the last line feed; forgets it. Empty when the stream ended with a line.
    QByteArray takeRest();

private:
    void keep(const char *bytes, int size);

    QByteArray m_partial;
};
