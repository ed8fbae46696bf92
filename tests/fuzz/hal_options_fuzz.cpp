// SPDX-License-Identifier: MIT
// Arguments are understood, or one of them is named.
#include "fuzz_input.h"
#include "hal/options.h"

#include <algorithm>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArrayList words = FuzzInput(data, size).lines();
    std::vector<std::string_view> arguments;
    for (const QByteArray &word : words) {
        arguments.emplace_back(word.constData(), size_t(word.size()));
    }
    const hal::Options options = hal::optionsFrom(arguments);
    if (options.offender) {
        require(
            std::find(arguments.begin(), arguments.end(), *options.offender) != arguments.end());
        require(*options.offender != "--list" && *options.offender != "--help");
    } else {
        require(options.task != hal::Options::Task::Help || words.contains("--help")
            || words.contains("-h"));
    }
    return 0;
}
