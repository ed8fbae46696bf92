// SPDX-License-Identifier: MIT
// norvixctl doctor
#include "client/daemon_bus.h"
#include "client/doctor_checks.h"
#include "client/ppp_mend.h"
#include "client/say.h"
#include "client/text_format.h"
#include "ctl/command_line.h"
#include "ctl/commands.h"
#include "ctl/screen/paragraph.h"
#include "ctl/screen/remedy_text.h"
#include "ctl/screen/report.h"

#include <algorithm>
#include <unistd.h>

namespace {

constexpr int narrowestText = 34;

QString verdictText(Verdict verdict)
{
    switch (verdict) {
    case Verdict::Good:
        return Say::tr("ok");
    case Verdict::Doubtful:
        return Say::tr("look");
    case Verdict::Fault:
        return Say::tr("FAULT");
    case Verdict::NotChecked:
        break;
    }
    return Say::tr("?");
}

Tone verdictTone(Verdict verdict)
{
    switch (verdict) {
    case Verdict::Good:
        return Tone::Good;
    case Verdict::Doubtful:
        return Tone::Doubtful;
    case Verdict::Fault:
        return Tone::Bad;
    case Verdict::NotChecked:
        break;
    }
    return Tone::Faint;
}

void printForPerson(const QList<Finding> &findings, const Terminal &terminal)
{
    int widestTitle = 0;
    int widestVerdict = 0;
    for (const Finding &finding : findings) {
        widestTitle = std::max(widestTitle, checkTitle(finding.check).size());
        widestVerdict = std::max(widestVerdict, verdictText(finding.verdict).size());
    }
    // On a narrow terminal the words go below the title.
    const bool isNarrow = terminal.width() < widestVerdict + widestTitle + narrowestText;
    const int margin = isNarrow ? 4 : widestVerdict + widestTitle + 4;
    const QString indent(margin, QLatin1Char(' '));
    const int width = terminal.width() - margin;
    for (const Finding &finding : findings) {
        const QString verdict = verdictText(finding.verdict).leftJustified(widestVerdict);
        QStringList lines = wrapped(printable(factsText(finding)), width);
        const QString remedy = remedyText(finding.remedy);
        if (!remedy.isEmpty()) {
            // The width of the arrow and its blank.
            lines += wrapped(QStringLiteral("-> ") + remedy, width, 3);
        }
        const QString gap = isNarrow ? QLatin1Char('\n') + indent : QStringLiteral("  ");
        const QString name = checkTitle(finding.check);
        const QString title = isNarrow ? name : name.leftJustified(widestTitle);
        terminal.line(terminal.toned(verdict, verdictTone(finding.verdict)) + QLatin1String("  ")
            + title + gap + lines.join(QLatin1Char('\n') + indent));
    }
    const auto faults = std::count_if(findings.begin(), findings.end(),
        [](const Finding &finding) { return finding.verdict == Verdict::Fault; });
    terminal.line();
    terminal.paragraph(faults == 0 ? Say::tr("Nothing that stops a connection was found.")
                                   : Say::tr("%n thing(s) stop a connection. Begin with the first.",
                                       nullptr, int(faults)));
}

Table tableOf(const QList<Finding> &findings)
{
    Table table(QStringLiteral("checks"),
        {QStringLiteral("id"), QStringLiteral("verdict"), QStringLiteral("text"),
            QStringLiteral("remedy")},
        {});
    for (const Finding &finding : findings) {
        const QString remedy = remedyText(finding.remedy);
        table.add({finding.check, verdictWord(finding.verdict), factsText(finding),
            remedy.isEmpty() ? QJsonValue(QJsonValue::Null) : QJsonValue(remedy)});
    }
    return table;
}

} // namespace

int runDoctor(const Invocation &invocation, const Terminal &terminal)
{
    if (invocation.has("fix")) {
        if (geteuid() != 0) {
            return terminal.fail(
                NotPermitted, Say::tr("Only root may mend: “sudo norvixctl doctor --fix”."));
        }
        const MendResult result = mendPppFiles(gatherFacts(DaemonBus()));
        for (const QString &text : result.done) {
            terminal.note(text);
        }
        if (result.failure) {
            return terminal.fail(result.failure);
        }
    }
    const DaemonBus bus;
    const QList<Finding> findings = examine(gatherFacts(bus));
    if (terminal.form == Form::Human) {
        printForPerson(findings, terminal);
    } else {
        tableOf(findings).print(terminal);
    }
    const bool hasFault = std::any_of(findings.begin(), findings.end(),
        [](const Finding &finding) { return finding.verdict == Verdict::Fault; });
    return hasFault ? FaultsFound : Ok;
}
