// SPDX-License-Identifier: MIT
// The text of the resolver configuration: pure, knows no file.
#pragma once

#include <QByteArray>
#include <QList>
#include <QRegExp>
#include <QStringList>

/// A resolver configuration, line by line, as the system's own resolver reads it: keywords in lower
/// case at the very beginning of a line, blanks or tabs after them, whatever follows the address is
/// ignored. Prints what it was made from byte for byte.
class ResolvConf
{
public:
    /// Recognises a line that names a server; capture 1 is the address as written.
    static QRegExp nameserverLine();

    /// Recognises the line @p comment and no other.
    static QRegExp writerLine(const char *comment);

    /// Takes @p content apart by the two patterns above, which the caller keeps so that they are
    /// built once.
    ResolvConf(const QByteArray &content, QRegExp nameserverLine, const QRegExp &writerLine);

    /// Whether at least one line names a server that can answer.
    bool hasUsableServer() const;

    /// Lets the configuration name exactly @p servers, in their order, where the first server stood
    /// or else at the end, with the writer's @p comment once, as the very first line. All other
    /// lines stay. The addresses must be valid (isServerAddress()).
    void setServers(const QStringList &servers, const char *comment);

    /// The configuration as text.
    QByteArray toText() const;

private:
    enum class Kind
    {
        Nameserver,
        Writer,
        Other,
    };
    struct Line
    {
        Kind kind;
        QByteArray text; ///< with its line feed, if it has one
        QByteArray address; ///< of a Nameserver line, as written
    };
    QList<Line> m_lines;
};

/// Whether the resolver would take @p address from a file, in any of the spellings it knows (IPv4
/// also in hexadecimal or with fewer parts, IPv6 with a zone), and a server could answer there: the
/// unspecified, multicast and broadcast addresses cannot.
bool isUsableServer(const QByteArray &address);

/// Whether @p address is fit to be written: plain dotted IPv4, or IPv6 perhaps with a zone, and
/// usable.
bool isServerAddress(const QString &address);
