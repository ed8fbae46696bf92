// SPDX-License-Identifier: MIT
// The completion scripts.
#include "ctl/help_text.h"

#include <QMap>

namespace {

/// The first words of all commands, each once.
QStringList firstWords()
{
    QStringList words;
    for (const Command &command : commandTable()) {
        const QString word = QString::fromLatin1(command.path).section(QLatin1Char(' '), 0, 0);
        if (!words.contains(word)) {
            words.append(word);
        }
    }
    return words;
}

/// The second words of each group.
QMap<QString, QStringList> secondWords()
{
    QMap<QString, QStringList> groups;
    for (const Command &command : commandTable()) {
        const QStringList path = QString::fromLatin1(command.path).split(QLatin1Char(' '));
        if (path.size() > 1) {
            groups[path.at(0)].append(path.at(1));
        }
    }
    return groups;
}

QStringList optionNames(const Command &command)
{
    QStringList names;
    for (const Option &option : optionsOf(command)) {
        names.append(QLatin1String("--") + QLatin1String(option.name));
    }
    return names;
}

/// The values of all options that have a fixed set, by the option's name.
QMap<QString, QString> optionChoices()
{
    QMap<QString, QString> choices;
    for (const Command &command : commandTable()) {
        for (const Option &option : optionsOf(command)) {
            if (option.choices != nullptr) {
                choices[QLatin1String("--") + QLatin1String(option.name)]
                    = QLatin1String(option.choices);
            }
        }
    }
    return choices;
}

enum class Values
{
    Any,
    Free, ///< any word may follow
};

/// The options after which a value follows, separated by bars.
QString optionsWithValue(Values values)
{
    QStringList names;
    for (const Command &command : commandTable()) {
        for (const Option &option : optionsOf(command)) {
            const bool isMeant = values == Values::Any || option.choices == nullptr;
            if (option.value == nullptr || !isMeant) {
                continue;
            }
            names.append(QLatin1String("--") + QLatin1String(option.name));
            if (option.letter != 0) {
                names.append(QStringLiteral("-%1").arg(QLatin1Char(option.letter)));
            }
        }
    }
    names.removeDuplicates(); // several commands have the same, or another by the same letter
    return names.join(QLatin1Char('|'));
}

/// A case that turns a command's path into the words that may follow it.
QStringList cases(const QString &indent)
{
    QStringList lines;
    const QMap<QString, QStringList> groups = secondWords();
    for (auto group = groups.begin(); group != groups.end(); ++group) {
        lines.append(QStringLiteral("%1'%2') words='%3' ;;")
                         .arg(indent, group.key(), group.value().join(QLatin1Char(' '))));
    }
    for (const Command &command : commandTable()) {
        QStringList words = argumentChoices(command);
        if (qstrcmp(command.path, "help") == 0) {
            words = firstWords();
        }
        words += optionNames(command);
        lines.append(QStringLiteral("%1'%2') words='%3' ;;")
                         .arg(indent, QLatin1String(command.path), words.join(QLatin1Char(' '))));
    }
    return lines;
}

QStringList valueCases(const QString &indent, const QString &answer)
{
    QStringList lines;
    const QMap<QString, QString> choices = optionChoices();
    for (auto option = choices.begin(); option != choices.end(); ++option) {
        QString line = answer;
        line.replace(QLatin1String("CHOICES"), option.value());
        line.replace(QLatin1String("OPTION"), option.key());
        lines.append(indent + line);
    }
    return lines;
}

/// The words that belong to the command's path: no options and none of their values.
QStringList pathLoop(const QString &indent, const QString &words, const QString &suffix)
{
    QStringList lines = {QStringLiteral("for WORD in ALL; do"), QStringLiteral("    case $WORD in"),
        // bash makes three words of --option=value.
        QStringLiteral("    =|%1) SKIP=1 ;;").arg(optionsWithValue(Values::Any)),
        QStringLiteral("    -*) ;;"),
        QStringLiteral("    *) [[ -n $SKIP ]] || PATH_=\"$PATH_${PATH_:+ }$WORD\"; SKIP='' ;;"),
        QStringLiteral("    esac"), QStringLiteral("done")};
    for (QString &line : lines) {
        line.replace(QLatin1String("WORD"), QLatin1String("word") + suffix);
        line.replace(QLatin1String("SKIP"), QLatin1String("skip") + suffix);
        line.replace(QLatin1String("PATH_"), QLatin1String("path") + suffix);
        line.replace(QLatin1String("ALL"), words); // last: it may contain the other marks
        line.prepend(indent);
    }
    return lines;
}

} // namespace

QString bashCompletion()
{
    QStringList lines = {QStringLiteral("# Completion of norvixctl for bash, made by it."),
        QStringLiteral("_norvixctl()"), QStringLiteral("{"),
        QStringLiteral("    local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD-1]}"),
        QStringLiteral("    local path='' words='' word skip=''"),
        QStringLiteral("    COMPREPLY=()"),
        QStringLiteral("    # The sign between an option and its value is a word of its own here."),
        QStringLiteral("    if [[ $cur == = ]]; then cur=''"),
        QStringLiteral("    elif [[ $prev == = ]]; then prev=${COMP_WORDS[COMP_CWORD-2]}; fi"),
        QStringLiteral("    case $prev in")};
    lines += valueCases(QStringLiteral("    "),
        QStringLiteral(
            "OPTION) mapfile -t COMPREPLY < <(compgen -W 'CHOICES' -- \"$cur\"); return ;;"));
    lines.append(QStringLiteral("    %1) return ;;").arg(optionsWithValue(Values::Free)));
    lines.append(QStringLiteral("    esac"));
    lines += pathLoop(
        QStringLiteral("    "), QStringLiteral("\"${COMP_WORDS[@]:1:COMP_CWORD-1}\""), QString());
    lines += {QStringLiteral("    case $path in"),
        QStringLiteral("    '') words='%1 --help --version --color' ;;")
            .arg(firstWords().join(QLatin1Char(' ')))};
    lines += cases(QStringLiteral("    "));
    lines += {QStringLiteral("    esac"),
        QStringLiteral("    mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$cur\")"),
        QStringLiteral("}"), QStringLiteral("complete -F _norvixctl norvixctl")};
    return lines.join(QLatin1Char('\n'));
}

QString zshCompletion()
{
    QStringList lines = {QStringLiteral("#compdef norvixctl"),
        QStringLiteral("# Completion of norvixctl for zsh, made by it."),
        QStringLiteral("_norvixctl()"), QStringLiteral("{"),
        QStringLiteral("    local path_ words_ word_ skip_ prev_=${words[CURRENT-1]}"),
        QStringLiteral("    case ${words[CURRENT]} in")};
    lines += valueCases(QStringLiteral("    "),
        QStringLiteral("OPTION=*) compadd -P OPTION= -- CHOICES; return ;;"));
    lines += {QStringLiteral("    esac"), QStringLiteral("    case $prev_ in")};
    lines += valueCases(
        QStringLiteral("    "), QStringLiteral("OPTION) compadd -- CHOICES; return ;;"));
    lines.append(QStringLiteral("    %1) return ;;").arg(optionsWithValue(Values::Free)));
    lines.append(QStringLiteral("    esac"));
    lines += pathLoop(
        QStringLiteral("    "), QStringLiteral("${words[2,CURRENT-1]}"), QStringLiteral("_"));
    lines += {QStringLiteral("    case $path_ in"),
        QStringLiteral("    '') words_='%1 --help --version --color' ;;")
            .arg(firstWords().join(QLatin1Char(' ')))};
    for (QString line : cases(QStringLiteral("    "))) {
        lines.append(line.replace(QLatin1String(" words='"), QLatin1String(" words_='")));
    }
    lines += {QStringLiteral("    esac"), QStringLiteral("    compadd -- ${=words_}"),
        QStringLiteral("}"), QStringLiteral("_norvixctl \"$@\"")};
    return lines.join(QLatin1Char('\n'));
}
