// SPDX-License-Identifier: MIT
// An accepted tree holds no link by which one could get out of it.
#include "fuzz_input.h"
#include "support/driver/source_archive.h"

#include <QTemporaryDir>
#include <array>
#include <filesystem>
#include <sys/stat.h>

namespace {

namespace fs = std::filesystem;

// Few names, so that links often lead to each other.
constexpr std::array places = {"a", "b", "a/c", "a/d", "b/c", "a/c/e", "b/c/d"};
constexpr std::array targets = {".", "..", "../..", "/", "a", "b", "c", "d", "../a", "../b",
    "../../b/c", "../a/d", "c/../../..", "nowhere", "/etc", "../d/.."};

void make(const fs::path &top, unsigned what, const char *place, const char *target)
{
    std::error_code ignored; // what can not be made here is left out
    // A place below a link could lie anywhere: only plain folders are gone into.
    for (fs::path folder = fs::path(place).parent_path(); !folder.empty();
         folder = folder.parent_path()) {
        if (!fs::is_directory(fs::symlink_status(top / folder, ignored))) {
            return;
        }
    }
    if (what % 4 == 0) {
        mkfifo((top / place).c_str(), 0600);
    } else if (what % 4 == 1) {
        fs::create_directory(top / place, ignored);
    } else {
        fs::create_symlink(target, top / place, ignored);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const QTemporaryDir folder;
    const fs::path top = fs::canonical(folder.path().toStdString()) / "top";
    fs::create_directory(top);
    for (size_t i = 0; i + 3 <= size && i < 60; i += 3) {
        make(top, data[i], places.at(data[i + 1] % places.size()),
            targets.at(data[i + 2] % targets.size()));
    }
    if (judgeTree(QString::fromStdString(top.string())).isEmpty()) {
        for (const fs::directory_entry &entry : fs::recursive_directory_iterator(top)) {
            const std::string end = fs::canonical(entry.path()).string();
            require(end == top.string() || end.rfind(top.string() + '/', 0) == 0);
        }
    }
    fs::remove_all(top);
    return 0;
}
