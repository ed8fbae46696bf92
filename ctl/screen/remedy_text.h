// SPDX-License-Identifier: MIT
// What a person can do, as this program tells it: with the command that does it.
#pragma once

#include "client/remedy.h"

#include <QVariantList>

struct Finding;

/// The remedy in the user's language; empty for none.
QString remedyText(const Remedy &remedy);

/// What a check has found, with the remedies of single facts.
QString factsText(const Finding &finding);

/// The sentence for a signal, with the command that it asks for.
QString signalWithRemedy(const QString &signal, const QVariantList &arguments);
