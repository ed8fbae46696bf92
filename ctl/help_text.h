// SPDX-License-Identifier: MIT
// The help and the completion scripts, made from the table of commands.
#pragma once

#include "ctl/command_table.h"

#include <QJsonObject>
#include <QString>
#include <QStringList>

/// The overview of all commands; with @p group only those that begin with that word.
QStringList overviewHelp(int width, const QString &group = QString());

/// Usage, summary and options of one command.
QStringList commandHelp(const Command &command, int width);

/// The table as an object, for programs.
QJsonObject commandTableObject();

QString bashCompletion();
QString zshCompletion();
