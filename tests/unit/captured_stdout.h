// SPDX-License-Identifier: MIT
// What the program prints on standard output while an object of this class lives.
#pragma once

#include <QByteArray>
#include <cstdio>
#include <unistd.h>

class CapturedStdout
{
public:
    CapturedStdout()
    {
        fflush(stdout);
        dup2(fileno(m_file), STDOUT_FILENO);
    }
    ~CapturedStdout() { restore(); }
    CapturedStdout(const CapturedStdout &) = delete;
    CapturedStdout &operator=(const CapturedStdout &) = delete;

    /// Ends the capture and gives all that was printed.
    QByteArray text()
    {
        restore();
        QByteArray text;
        rewind(m_file);
        for (int byte = fgetc(m_file); byte != EOF; byte = fgetc(m_file)) {
            text.append(char(byte));
        }
        return text;
    }

private:
    void restore()
    {
        if (m_original >= 0) {
            fflush(stdout);
            dup2(m_original, STDOUT_FILENO);
            close(m_original);
            m_original = -1;
        }
    }

    FILE *m_file = tmpfile();
    int m_original = dup(STDOUT_FILENO);
};
