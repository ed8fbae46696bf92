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
    std::string offender = "none";
    if (const auto options = hal::optionsFrom(arguments, &offender)) {
        require(offender == "none");
        require(options->task != hal::Options::Task::Help || words.contains("--help")
            || words.contains("-h"));
    } else {
        require(std::find(arguments.begin(), arguments.end(), offender) != arguments.end());
        require(offender != "--list" && offender != "--help");
    }
    return 0;
}
