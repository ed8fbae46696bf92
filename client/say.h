// SPDX-License-Identifier: MIT
// The one translation context of everything this program says.
#pragma once

#include <QCoreApplication>

class Say
{
    Q_DECLARE_TR_FUNCTIONS(Say)
};
