// SPDX-License-Identifier: MIT
// Every signal, whoever sent it and with whatever values, is one line that steers no terminal.
#include "client/signal_text.h"
#include "client/text_format.h"
#include "fuzz_input.h"

#include <algorithm>

namespace {

QVariant valueFrom(const QByteArray &line)
{
    const QByteArray text = line.mid(1);
    switch (line.isEmpty() ? 's' : line.at(0)) {
    case 'b':
        return text.startsWith('1');
    case 'i':
        return text.toInt();
    case 'd':
        return text.toDouble();
    case 'x':
        return text.toLongLong();
    default:
        return QString::fromUtf8(text);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzInput input(data, size);
    const QString signal = input.textLine();
    QVariantList arguments;
    for (const QByteArray &line : input.lines().mid(0, 8)) {
        arguments.append(valueFrom(line));
    }
    const QString text = signalText(signal, arguments);
    require(std::none_of(text.begin(), text.end(), isSteering));
    require(signalArguments(signal, arguments).size() <= arguments.size());
    const int state = arguments.value(0).toInt();
    require(!connectionWord(state).isEmpty() && !connectionText(state).isEmpty());
    return 0;
}
