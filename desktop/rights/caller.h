// SPDX-License-Identifier: MIT
// What the two programs with an administrator's rights trust: nothing that they were given but the
// number of who asks. Knows no Qt.
#pragma once

#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace desktop {

/// The user that @p text (PKEXEC_UID; null for none) names: a plain decimal number, neither root
/// nor the value that means nobody.
std::optional<uid_t> callerFrom(const char *text);

/// Whether a name can stand on the command line of a system's program and mean nothing but itself.
bool isPlainUserName(const std::string &name);

/// The user who asks, when root's rights are there; otherwise says on standard error what is
/// wrong. From then on the environment holds a path and a language only, the working folder is the
/// root folder, standard input is empty, and no other descriptor than the three is open.
std::optional<uid_t> beginWithRights(const char *program);

/// Runs a program of the system to its end. Its exit status; nothing when it could not be run or
/// was killed.
std::optional<int> runToEnd(const std::vector<const char *> &words);

} // namespace desktop
