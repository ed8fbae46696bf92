// SPDX-License-Identifier: MIT
#include "support/driver/source_patch.h"

#include <QRegularExpression>

namespace {

struct Replacement
{
    const char *pattern;
    const char *after;
};

// Where an absolute path begins, and a kernel release in one as makefiles write it: letters and
// digits, $(…), ${…} or `…`. All of it has a limit: a line of megabytes in which each path runs to
// the line's end would take hours.
#define PATH_BEGINS "(?:(?<=-I)|(?<![\\w)}/]))"
#define RELEASE "(?:\\$\\([^)]{0,99}\\)|\\$\\{[^}]{0,99}\\}|`[^`]{0,99}`|[\\w.+~-]){1,255}"

// %BUILD% stands for the running kernel's build folder.
constexpr Replacement makefileReplacements[] = {
    // At the start of a line it is automake's list of folders, which means something else.
    {"(?<=\\s)SUBDIRS=", "M="},
    {PATH_BEGINS "/usr/src/linux(?:-" RELEASE ")?(?![\\w-])", "%BUILD%"},
    {PATH_BEGINS "/usr/src/kernels/" RELEASE, "%BUILD%"},
    {PATH_BEGINS "(?:/usr)?/lib/modules/\\d[\\w.+~-]*/(?:build|source)\\b", "%BUILD%"},
    {PATH_BEGINS "(?:/usr)?/lib/modules/(?=" RELEASE "/(?!build\\b|source\\b))",
        "$(INSTALL_MOD_PATH)/lib/modules/"},
};

constexpr Replacement sourceReplacements[] = {
    {"^\\s*#\\s*include\\s*<linux/(?:config|smp_lock)\\.h>", ""},
    {"^\\s*#\\s*include\\s*<asm/system\\.h>", ""},
    {"<linux/autoconf\\.h>", "<generated/autoconf.h>"},
    {"<asm/uaccess\\.h>", "<linux/uaccess.h>"},
    {"<asm/semaphore\\.h>", "<linux/semaphore.h>"},
    {"\\b__devexit_p\\((\\w+)\\)", "\\1"},
    {"\\b__dev(?:init|exit)(?:data|const)?\\b ?", ""},
    {"\\bSA_SHIRQ\\b", "IRQF_SHARED"},
    {"\\bSLAB_KERNEL\\b", "GFP_KERNEL"},
    {"\\bSLAB_ATOMIC\\b", "GFP_ATOMIC"},
    {"\\busb_buffer_alloc\\b", "usb_alloc_coherent"},
    {"\\busb_buffer_free\\b", "usb_free_coherent"},
    {"\\binit_MUTEX\\(([^()]*)\\)", "sema_init(\\1, 1)"},
    {"\\bDECLARE_MUTEX\\b", "DEFINE_SEMAPHORE"},
};

#undef PATH_BEGINS
#undef RELEASE

/// Applies the table line by line; bytes travel as Latin-1, so whatever they are they survive.
template <int count>
AdaptedText adapt(
    const QByteArray &text, const Replacement (&table)[count], const QString &buildFolder)
{
    AdaptedText result;
    QStringList lines = QString::fromLatin1(text.constData(), text.size()).split(QLatin1Char('\n'));
    for (const Replacement &replacement : table) {
        const QRegularExpression pattern(QLatin1String(replacement.pattern));
        const QString after = QString(QLatin1String(replacement.after))
                                  .replace(QLatin1String("%BUILD%"), buildFolder);
        for (int i = 0; i < lines.size(); ++i) {
            const QString before = lines.at(i);
            lines[i].replace(pattern, after);
            if (lines.at(i) != before) {
                result.changes.append(
                    QStringLiteral("line %1: \"%2\" -> \"%3\"")
                        .arg(QString::number(i + 1), before.trimmed(), lines.at(i).trimmed()));
            }
        }
    }
    result.text = lines.join(QLatin1Char('\n')).toLatin1();
    return result;
}

} // namespace

AdaptedText adaptMakefile(const QByteArray &text, const QString &buildFolder)
{
    return adapt(text, makefileReplacements, buildFolder);
}

AdaptedText adaptSource(const QByteArray &text)
{
    return adapt(text, sourceReplacements, QString());
}

bool isMakefile(const QString &fileName)
{
    static const QStringList names{QStringLiteral("Makefile"), QStringLiteral("makefile"),
        QStringLiteral("GNUmakefile"), QStringLiteral("Kbuild")};
    return names.contains(fileName) || fileName.endsWith(QLatin1String(".mk"));
}

bool isSource(const QString &fileName)
{
    return fileName.endsWith(QLatin1String(".c")) || fileName.endsWith(QLatin1String(".h"));
}
