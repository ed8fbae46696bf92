// SPDX-License-Identifier: MIT
// The escapes in the words of pppd's files. Pure.
#pragma once

#include <QByteArray>

/// What pppd reads in @p word, the bytes of a word without the quotes around it.
QByteArray readByPppd(const QByteArray &word);
