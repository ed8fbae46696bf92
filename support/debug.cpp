// SPDX-License-Identifier: MIT
#include "support/debug.h"

#include <QFile>

// Constant-initialised, so that they are valid before any other initialiser runs.
bool debug = false;
FILE *pFile = nullptr;

void setDebug(bool enable, const QString &path)
{
    if (pFile != nullptr) {
        fclose(pFile);
        pFile = nullptr;
    }
    if (enable) {
        // "e": children such as pppd outlive the daemon and must not keep its log open.
        pFile = fopen(QFile::encodeName(path).constData(), "ae");
    }
}

void writeVerbose(const char *text)
{
    if (!debug || pFile == nullptr) {
        return;
    }
    fputs(text, pFile);
    fflush(pFile);
}
