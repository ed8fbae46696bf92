// SPDX-License-Identifier: MIT
// What was read from any text can be written, and is read again as it was.
#include "fuzz_input.h"
#include "support/files/settings_text.h"

namespace {

bool isSame(const QVariant &one, const QVariant &other)
{
    if (one.canConvert<UndecodedSetting>() || other.canConvert<UndecodedSetting>()) {
        return one.canConvert<UndecodedSetting>() && other.canConvert<UndecodedSetting>()
            && one.value<UndecodedSetting>().text == other.value<UndecodedSetting>().text;
    }
    return one.userType() == other.userType() && one == other;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray content = FuzzInput(data, size).rest();
    const ReadSettings read = settingsFrom(content);
    const QByteArray written = settingsText(read.values);
    // One character becomes at most "%UXXXX" in a key, "\xXXXX" in a value; a section that begins
    // with a backslash stands before each of its keys.
    int keys = 0;
    for (auto value = read.values.begin(); value != read.values.end(); ++value) {
        keys += value.key().size();
    }
    require(written.size() <= 7 * (content.size() + keys) + 64);

    const ReadSettings again = settingsFrom(written);
    require(again.isWellFormed);
    QMap<QString, QVariant> kept;
    for (auto value = read.values.begin(); value != read.values.end(); ++value) {
        // Keys of a section without a name are written into the general one, as the library does
        // it.
        if (value.key().startsWith(QLatin1Char('/'))) {
            return 0;
        }
        // A group called general gets a capital letter when it is written, as the library does it,
        // and may so meet another of its name.
        const QString group = value.key().section(QLatin1Char('/'), 0, 0);
        if (value.key() != group && group != QLatin1String("General")
            && group.compare(QLatin1String("General"), Qt::CaseInsensitive) == 0) {
            return 0;
        }
        // One that ends with a slash would be read as something else.
        const QString key = value.key().section(QLatin1Char('/'), 1);
        if (!key.endsWith(QLatin1Char('/'))) {
            kept.insert(value.key(), value.value());
        }
    }
    require(again.values.keys() == kept.keys());
    for (auto value = kept.begin(); value != kept.end(); ++value) {
        require(isSame(value.value(), again.values.value(value.key())));
    }
    require(settingsText(again.values) == written);
    return 0;
}
