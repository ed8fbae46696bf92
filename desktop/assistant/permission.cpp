// SPDX-License-Identifier: MIT
#include "desktop/assistant/permission.h"

#include "client/say.h"

#include <algorithm>
#include <cstring>
#include <grp.h>
#include <pwd.h>
#include <unistd.h>
#include <vector>

namespace desktop {

PermissionFacts gatherPermissionFacts()
{
    constexpr size_t mostBytes = 1 << 20;
    PermissionFacts facts;
    facts.isSuperuser = geteuid() == 0;
    std::vector<char> texts(mostBytes);
    group entry = {};
    group *found = nullptr;
    if (getgrnam_r("norvix", &entry, texts.data(), texts.size(), &found) != 0 || found == nullptr) {
        return facts;
    }
    facts.hasGroup = true;
    std::vector<gid_t> groups(size_t(std::max(0, getgroups(0, nullptr))));
    groups.resize(size_t(std::max(0, getgroups(int(groups.size()), groups.data()))));
    groups.push_back(getegid());
    facts.isMemberNow = std::find(groups.begin(), groups.end(), entry.gr_gid) != groups.end();
    std::vector<char> userTexts(mostBytes);
    passwd user = {};
    passwd *self = nullptr;
    if (getpwuid_r(getuid(), &user, userTexts.data(), userTexts.size(), &self) == 0
        && self != nullptr) {
        facts.isMember = user.pw_gid == entry.gr_gid;
        for (char **member = entry.gr_mem; *member != nullptr; ++member) {
            facts.isMember = facts.isMember || std::strcmp(*member, user.pw_name) == 0;
        }
    }
    return facts;
}

Permission permissionOf(const PermissionFacts &facts)
{
    if (facts.bus == Answer::Yes || facts.isSuperuser) {
        return Permission::Allowed;
    }
    if (!facts.hasGroup) {
        return Permission::NoGroup;
    }
    if (facts.isMemberNow) {
        return facts.bus == Answer::No ? Permission::RefusedMember : Permission::Allowed;
    }
    return facts.isMember ? Permission::StartAnew : Permission::Join;
}

QString permissionText(Permission permission)
{
    switch (permission) {
    case Permission::Allowed:
        return Say::tr("You may use the modem.");
    case Permission::StartAnew:
        return Say::tr("You joined the group norvix after you had logged in, so this program does "
                       "not know it yet. “Use it now” starts it anew; then it may use the modem.");
    case Permission::Join:
        return Say::tr(
            "Only members of the group norvix may use the modem, and you are not one yet. "
            "An administrator's password makes you one: the one that is asked for when "
            "programs are installed on this computer.");
    case Permission::NoGroup:
        return Say::tr("Only members of the group norvix may use the modem, and there is no such "
                       "group yet. An administrator's password creates it.");
    case Permission::RefusedMember:
        return Say::tr("You are a member of the group norvix, but the bus refuses you all the "
                       "same. The check-up tells why.");
    }
    return {};
}

} // namespace desktop
