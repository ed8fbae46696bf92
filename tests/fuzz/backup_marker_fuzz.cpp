// SPDX-License-Identifier: MIT
// Whatever the marker of a cut-off install holds, nothing outside the module folder is meant.
#include "fuzz_input.h"
#include "support/driver/module_backup.h"
#include "support/driver/module_tree.h"

#include <filesystem>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray marker = FuzzInput(data, size).rest();
    const ModuleTree tree(QStringLiteral("/lib/modules/6.1"));
    for (const QString &file : addedFilesIn(marker)) {
        const auto path
            = std::filesystem::path(tree.absolute(file).toStdString()).lexically_normal().string();
        require(path.rfind("/lib/modules/6.1", 0) == 0);
        require(!file.isEmpty() && !file.contains(QLatin1Char('\n')));
        // A file of any other name is none of the module's.
        ModuleTree::isCopyOf(file, QStringLiteral("ueagle-atm.ko"));
    }
    if (const auto place = tree.placeOf(QString::fromUtf8(marker))) {
        require(tree.absolute(*place).endsWith(*place) && !place->isEmpty());
    }
    return 0;
}
