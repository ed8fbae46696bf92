// SPDX-License-Identifier: MIT
#include "desktop/assistant/draft.h"

#include <QDataStream>
#include <QIODevice>

namespace desktop {

namespace {

constexpr quint32 mark = 0x4E565831;

} // namespace

QByteArray handOverText(const HandOver &handOver)
{
    QByteArray text;
    QDataStream stream(&text, QIODevice::WriteOnly);
    const Draft &draft = handOver.draft;
    stream << mark << (handOver.step ? stepWord(*handOver.step) : QString()) << draft.country
           << draft.provider << draft.protocol << draft.vpi << draft.vci << draft.login
           << draft.password;
    return text;
}

std::optional<HandOver> handOverFrom(const QByteArray &text)
{
    QDataStream stream(text);
    quint32 found = 0;
    QString step;
    HandOver handOver;
    Draft &draft = handOver.draft;
    stream >> found >> step >> draft.country >> draft.provider >> draft.protocol >> draft.vpi
        >> draft.vci >> draft.login >> draft.password;
    if (found != mark || stream.status() != QDataStream::Ok || !stream.atEnd()) {
        return std::nullopt;
    }
    handOver.step = stepNamed(step);
    return handOver;
}

} // namespace desktop
