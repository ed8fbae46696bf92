// SPDX-License-Identifier: MIT
// Reading the kernel's counter files.
#pragma once

#include <QString>

/// Reads the unsigned number that the file at @p path begins with. False, with @p out untouched,
/// when the file cannot be opened or begins with no number.
bool readUnsignedLong(const QString &path, unsigned long &out);
bool readUnsigned(const QString &path, unsigned int &out);
