// SPDX-License-Identifier: MIT
// Adapting keeps every line, tells every change, and touches nothing else.
#include "fuzz_input.h"
#include "support/driver/source_patch.h"

namespace {

void check(const QByteArray &before, const AdaptedText &adapted)
{
    const QByteArrayList oldLines = before.split('\n');
    const QByteArrayList newLines = adapted.text.split('\n');
    require(oldLines.size() == newLines.size());
    for (int i = 0; i < oldLines.size(); ++i) {
        const QString told = QStringLiteral("line %1:").arg(i + 1);
        bool isTold = false;
        for (const QString &change : adapted.changes) {
            isTold = isTold || change.startsWith(told);
        }
        require(isTold || oldLines.at(i) == newLines.at(i));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray text = FuzzInput(data, size).rest();
    check(text, adaptSource(text));
    const AdaptedText makefile
        = adaptMakefile(text, QStringLiteral("/lib/modules/6.1.0-1-amd64/build"));
    check(text, makefile);
    const QStringList names = FuzzInput(data, size).textLines();
    require(!isSource(names.constFirst()) || !isMakefile(names.constFirst()));
    return 0;
}
