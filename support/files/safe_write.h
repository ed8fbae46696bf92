// SPDX-License-Identifier: MIT
// Puts a file in place completely or not at all. Knows no Qt: norvix-hald uses it, too.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <sys/stat.h>

/// What a file is besides its bytes.
struct FileAttributes
{
    mode_t mode = 0644;
    uid_t owner = 0;
    gid_t group = 0;
    timespec changed = {0, UTIME_NOW}; ///< when its bytes last changed
};

/// What the names of files that are not yet in place begin with.
constexpr char unfinishedPrefix[] = ".norvix-new-";

/// Writes all of @p bytes from the offset @p at on. False, with errno set, when that failed.
bool writeAll(int descriptor, std::string_view bytes, off_t at = 0);

/// Sees to it that a change of the names in @p folder outlives a power failure.
bool syncFolder(const std::string &folder);

/// Puts a new file at @p path, which @p fill writes through the descriptor that it is given: writes
/// beside, gives owner and mode, flushes, renames, flushes the folder. Whatever happens, a killed
/// process or a power failure, @p path is the old file or the complete new one; a link there is
/// replaced, not followed. Several processes may do so at once. False, with errno set, when nothing
/// was changed. Call it from any thread.
bool replaceFileWith(const std::string &path, const FileAttributes &attributes,
    const std::function<bool(int)> &fill);

/// Puts a link to @p leadsTo at @p path in the same way.
bool replaceLinkWith(
    const std::string &path, const std::string &leadsTo, const FileAttributes &attributes);

/// Removes the files beside @p path that killed processes left on their way to it, and no others.
void clearUnfinished(const std::string &path);

/// Removes what killed processes left in @p folder on their way to any file of it.
void clearUnfinishedIn(const std::string &folder);
