// SPDX-License-Identifier: MIT
// Whether the person may use the modem, and what is missing.
#pragma once

#include "client/doctor_facts.h"

namespace desktop {

enum class Permission
{
    Allowed,
    StartAnew, ///< a member, but this program began before that
    Join, ///< no member
    NoGroup, ///< there is nothing to be a member of
    RefusedMember, ///< a member, and the bus refuses all the same
};

struct PermissionFacts
{
    Answer bus = Answer::Unknown; ///< whether the bus lets this program use the daemon
    bool isSuperuser = false;
    bool hasGroup = false;
    bool isMember = false; ///< by the group file
    bool isMemberNow = false; ///< by the groups of this process
};

/// Looks at users and groups; may take a while where a network knows them. Does not ask the bus.
PermissionFacts gatherPermissionFacts();

Permission permissionOf(const PermissionFacts &facts);

/// One or two sentences in the user's language.
QString permissionText(Permission permission);

} // namespace desktop
