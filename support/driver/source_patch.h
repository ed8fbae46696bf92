// SPDX-License-Identifier: MIT
// Adapts makefiles and sources of old drivers to what today's kernel build accepts.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

/// A text after adapting, and what was done to it.
struct AdaptedText
{
    QByteArray text;
    QStringList changes; ///< "line N: old -> new", in words for the build log; empty: unchanged
};

/// Adapts a makefile: SUBDIRS= on a make command becomes M=, a fixed kernel source folder becomes
/// @p buildFolder, and paths below /lib/modules that a recipe writes to get $(INSTALL_MOD_PATH)
/// before them, so that nothing is written to the running system before all is there.
AdaptedText adaptMakefile(const QByteArray &text, const QString &buildFolder);

/// Adapts C text: headers, attributes and functions that the kernel has dropped.
AdaptedText adaptSource(const QByteArray &text);

/// Whether a file of that name is a makefile.
bool isMakefile(const QString &fileName);

/// Whether a file of that name holds C text.
bool isSource(const QString &fileName);
