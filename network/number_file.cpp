// SPDX-License-Identifier: MIT
#include "network/number_file.h"

#include <cstdio>
#include <memory>

namespace {

struct CloseFile
{
    void operator()(FILE *file) const { fclose(file); }
};

template <typename Number> bool readNumber(const QString &path, const char *format, Number &out)
{
    const std::unique_ptr<FILE, CloseFile> file(fopen(path.toLatin1().constData(), "re"));
    Number number = 0;
    if (!file || fscanf(file.get(), format, &number) < 1) {
        return false;
    }
    out = number;
    return true;
}

} // namespace

bool readUnsignedLong(const QString &path, unsigned long &out)
{
    return readNumber(path, "%lu", out);
}

bool readUnsigned(const QString &path, unsigned int &out)
{
    return readNumber(path, "%u", out);
}
