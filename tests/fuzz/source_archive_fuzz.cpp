// SPDX-License-Identifier: MIT
// No member of an accepted listing lies elsewhere than in the top folder.
#include "fuzz_input.h"
#include "support/driver/source_archive.h"

#include <filesystem>

namespace {

/// Where unpacking without its first @p depth components puts a member.
std::filesystem::path placeOf(const QByteArray &member, int depth)
{
    const QByteArrayList components = member.split('/');
    require(components.size() >= depth);
    return components.mid(depth).join('/').toStdString();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzInput input(data, size);
    QByteArray top(input.line().constData()); // up to a zero, as the text of a record ends
    if (top.isEmpty() || top == "." || top == ".." || top.contains('/')) {
        top = "driver-1.0"; // the records name nothing else
    }
    const ArchiveShape shape = judgeListing(input.rest(), QString::fromUtf8(top));
    if (!shape.refusal.isEmpty()) {
        return 0;
    }
    require(shape.topDepth >= 1);
    int members = 0;
    for (const QByteArray &member : input.lines()) {
        if (member.isEmpty()) {
            continue;
        }
        ++members;
        require(!member.startsWith('/'));
        const std::filesystem::path place = placeOf(member, shape.topDepth).lexically_normal();
        require(place.begin() == place.end() || *place.begin() != "..");
        const auto whole = std::filesystem::path(member.toStdString()).lexically_normal();
        require(*whole.begin() == QString::fromUtf8(top).toLocal8Bit().toStdString());
    }
    require(members > 0);
    return 0;
}
