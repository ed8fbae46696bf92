// SPDX-License-Identifier: MIT
#include "support/process/debug.h"

#include <QFile>
#include <fcntl.h>

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
        // Children such as pppd outlive the daemon and must not keep its log open. A pipe in the
        // log's place must not hold the start up until somebody reads it.
        const int fd = open(QFile::encodeName(path).constData(),
            O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NONBLOCK, 0666);
        pFile = fd < 0 ? nullptr : fdopen(fd, "a");
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
