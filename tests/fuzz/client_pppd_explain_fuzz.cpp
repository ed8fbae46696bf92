// SPDX-License-Identifier: MIT
// What is told of an attempt stands in the log.
#include "client/pppd_explain.h"
#include "fuzz_input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray log = FuzzInput(data, size).rest();
    const QStringList lines = pppdLinesOfLog(log);
    require(lines.size() <= log.count('\n') + 1);
    for (const QStringList &attempt : {lines, FuzzInput(data, size).textLines()}) {
        const PppdVerdict verdict = explainPppd(attempt);
        require(verdict.line.isEmpty() || attempt.contains(verdict.line));
        require(verdict.line.isEmpty() == verdict.meaning.isEmpty());
        require(!verdict.isGood || verdict.remedy.kind == RemedyKind::None);
    }
    return 0;
}
