// SPDX-License-Identifier: MIT
// norvix-desktop-join: makes the user who asks a member of the group norvix, and does nothing else.
#include "desktop/rights/caller.h"
#include "desktop/rights/verb.h"

#include <cerrno>
#include <cstdio>
#include <grp.h>
#include <pwd.h>

namespace {

constexpr char program[] = "norvix-desktop-join";
constexpr char groupName[] = "norvix";

bool isMember(const group &members, const std::string &user)
{
    for (char **member = members.gr_mem; *member != nullptr; ++member) {
        if (user == *member) {
            return true;
        }
    }
    return false;
}

} // namespace

int main(int argc, char *[])
{
    const std::optional<uid_t> caller = desktop::beginWithRights(program);
    if (!caller) {
        return desktop::RightsMisused;
    }
    if (argc != 1) {
        std::fprintf(stderr, "%s: takes no arguments\n", program);
        return desktop::RightsMisused;
    }
    const passwd *entry = getpwuid(*caller);
    const std::string user = entry == nullptr ? "" : entry->pw_name;
    if (!desktop::isPlainUserName(user)) {
        std::fprintf(stderr, "%s: there is no user with the number that asks\n", program);
        return desktop::RightsMisused;
    }
    const group *members = getgrnam(groupName);
    if (members == nullptr) {
        std::fprintf(stderr, "%s: there is no group %s\n", program, groupName);
        return desktop::RightsNoGroup;
    }
    if (isMember(*members, user)) {
        return desktop::RightsDone;
    }
    // Unlike usermod it takes users whom another source than /etc/passwd knows.
    const std::optional<int> status = desktop::runToEnd({"gpasswd", "-a", user.c_str(), groupName});
    if (!status) {
        std::fprintf(stderr, "%s: gpasswd can not be run\n", program);
        return desktop::RightsNoProgram;
    }
    return *status == 0 ? desktop::RightsDone : desktop::RightsFailed;
}
