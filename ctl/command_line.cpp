// SPDX-License-Identifier: MIT
#include "ctl/command_line.h"

#include "client/say.h"

#include <algorithm>

namespace {

const Command *findCommand(const QString &path)
{
    for (const Command &command : commandTable()) {
        if (path == QLatin1String(command.path)) {
            return &command;
        }
    }
    return nullptr;
}

std::optional<Option> findOption(const std::vector<Option> &options, const QString &word)
{
    for (const Option &option : options) {
        const bool isLong = word == QLatin1String("--") + QLatin1String(option.name);
        const bool isShort = option.letter != 0 && word.size() == 2
            && word.at(0) == QLatin1Char('-') && word.at(1) == QLatin1Char(option.letter);
        if (isLong || isShort) {
            return option;
        }
    }
    return std::nullopt;
}

/// The groups that stand for one of their commands when nothing follows.
QString completePath(const QString &word)
{
    const QString shown = word + QLatin1String(" show");
    return findCommand(word) == nullptr && findCommand(shown) != nullptr ? shown : word;
}

/// The options before the command are known only when the command is: every option of any command
/// that takes a value must be skipped with it.
bool takesValue(const QString &word)
{
    const std::vector<Option> &common = commonOptions();
    const std::optional<Option> option = findOption(common, word);
    return option && option->value != nullptr;
}

/// Takes the words of the command's path out of @p words.
QString takePath(QStringList &words, ParsedLine &parsed)
{
    int position = 0;
    while (position < words.size() && words.at(position).startsWith(QLatin1Char('-'))
        && words.at(position) != QLatin1String("--")) {
        position += takesValue(words.at(position)) ? 2 : 1;
    }
    const bool haveOptionsEnded
        = position < words.size() && words.at(position) == QLatin1String("--");
    position += haveOptionsEnded ? 1 : 0;
    if (position >= words.size()) {
        return QString();
    }
    QString path = words.takeAt(position);
    if (!isGroup(path)) {
        return path;
    }
    parsed.group = path;
    if (position < words.size()
        && (haveOptionsEnded || !words.at(position).startsWith(QLatin1Char('-')))) {
        return path + QLatin1Char(' ') + words.takeAt(position);
    }
    parsed.isWholeGroup = true;
    return completePath(path);
}

QString unknownCommand(const QString &path)
{
    return Say::tr("There is no command “%1”. “norvixctl --help” lists them.").arg(path);
}

/// One option at the front of @p words, with its value; false and an error when it is none.
bool takeOption(QStringList &words, const std::vector<Option> &options, ParsedLine &parsed)
{
    QString word = words.takeFirst();
    QString value;
    const int equals = word.startsWith(QLatin1String("--")) ? word.indexOf(QLatin1Char('=')) : -1;
    if (equals > 0) {
        value = word.mid(equals + 1);
        word.truncate(equals);
    }
    const std::optional<Option> option = findOption(options, word);
    if (!option) {
        parsed.error = Say::tr("There is no option “%1” here.").arg(word);
        return false;
    }
    if (option->value == nullptr && equals > 0) {
        parsed.error = Say::tr("The option “%1” takes no value.").arg(word);
        return false;
    }
    if (option->value != nullptr && equals < 0) {
        if (words.isEmpty()) {
            parsed.error = Say::tr("The option “%1” needs a value.").arg(word);
            return false;
        }
        value = words.takeFirst();
    }
    if (option->choices != nullptr
        && !QString::fromLatin1(option->choices).split(QLatin1Char(' ')).contains(value)) {
        parsed.error = Say::tr("“%1” is not possible for “%2”. Possible are: %3.")
                           .arg(value, word, QLatin1String(option->choices));
        parsed.code = findOption(commonOptions(), word) ? BadUsage : ValueRefused;
        return false;
    }
    parsed.invocation.options.insert(QLatin1String(option->name), value);
    return true;
}

} // namespace

bool isGroup(const QString &word)
{
    const std::vector<Command> &table = commandTable();
    return std::any_of(table.begin(), table.end(), [&](const Command &command) {
        return QLatin1String(command.path).startsWith(word + QLatin1Char(' '));
    });
}

ParsedLine parseCommandLine(const QStringList &allWords)
{
    ParsedLine parsed;
    QStringList words = allWords;
    const QString path = takePath(words, parsed);
    const Command *command = findCommand(path);
    parsed.invocation.command = command;
    if (command == nullptr && !path.isEmpty() && parsed.group != path) {
        parsed.error = unknownCommand(path);
        return parsed;
    }
    const std::vector<Option> options = command != nullptr ? optionsOf(*command) : commonOptions();
    bool optionsEnded = false;
    while (!words.isEmpty()) {
        const QString &word = words.constFirst();
        if (!optionsEnded && word == QLatin1String("--")) {
            optionsEnded = true;
            words.removeFirst();
        } else if (!optionsEnded && word.size() > 1 && word.startsWith(QLatin1Char('-'))) {
            if (!takeOption(words, options, parsed)) {
                return parsed;
            }
        } else {
            parsed.invocation.arguments.append(words.takeFirst());
        }
    }
    const int most = command != nullptr ? command->mostArguments : 0;
    if (parsed.invocation.arguments.size() > most) {
        parsed.error
            = Say::tr("“%1” is one word too many.").arg(parsed.invocation.arguments.at(most));
    } else if (parsed.invocation.has("json") && parsed.invocation.has("terse")) {
        parsed.error = Say::tr("Take either --json or --terse.");
    }
    return parsed;
}

std::optional<int> wholeNumber(const QString &text, int least, int most)
{
    const bool digitsOnly = !text.isEmpty()
        && std::all_of(text.begin(), text.end(),
            [](QChar digit) { return digit >= QLatin1Char('0') && digit <= QLatin1Char('9'); });
    bool fits = false;
    const int number = text.toInt(&fits);
    if (!digitsOnly || !fits || number < least || number > most) {
        return std::nullopt;
    }
    return number;
}

std::optional<int> linesWanted(const Invocation &invocation, int usual, int most)
{
    return invocation.has("lines") ? wholeNumber(invocation.value("lines"), 0, most) : usual;
}
