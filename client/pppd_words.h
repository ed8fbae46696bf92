// SPDX-License-Identifier: MIT
// Login and password as pppd's files hold them in double quotes, and as pppd reads them.
#pragma once

#include <QString>

/// The text that stands for @p login in the files. pppd reads the login in it; the daemon, which
/// takes a quote for the end of the value and a backslash with a digit for a part of the entry that
/// it replaces, reads and writes it whole.
QString encodedLogin(const QString &login);

/// The same for a password, as short as it can be: here the daemon takes a quote for the end only
/// when white space and an asterisk follow.
QString encodedPassword(const QString &password);

/// What pppd reads in @p word, the text between the quotes. It may be any that pppd understands,
/// not only one that was made here.
QString decodedWord(const QString &word);
