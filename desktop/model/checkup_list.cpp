// SPDX-License-Identifier: MIT
#include "desktop/model/checkup_list.h"

#include "client/redaction.h"
#include "client/say.h"

#include <algorithm>

namespace desktop {

namespace {

auto countOf(const QList<Finding> &findings, Verdict verdict)
{
    return int(std::count_if(findings.begin(), findings.end(),
        [verdict](const Finding &finding) { return finding.verdict == verdict; }));
}

} // namespace

CheckupList checkupListOf(const QList<Finding> &findings)
{
    CheckupList list;
    QList<Finding> doubtful;
    for (const Finding &finding : findings) {
        switch (finding.verdict) {
        case Verdict::Good:
            list.fine.append(finding);
            break;
        case Verdict::Doubtful:
            doubtful.append(finding);
            break;
        case Verdict::Fault:
            list.bad.append(finding);
            break;
        case Verdict::NotChecked:
            (finding.remedy.kind == RemedyKind::None ? list.unknown : list.hidden).append(finding);
            break;
        }
    }
    list.bad += doubtful;
    return list;
}

QString checkupTitle(const QList<Finding> &findings)
{
    const int faults = countOf(findings, Verdict::Fault);
    if (faults == 1) {
        return Say::tr("One thing stops a connection");
    }
    if (faults > 1) {
        return Say::tr("%n thing(s) stop a connection", nullptr, faults);
    }
    return countOf(findings, Verdict::Doubtful) > 0
        ? Say::tr("Nothing stops a connection, but look at this")
        : Say::tr("Nothing stops a connection");
}

QString checkupFoldText(const CheckupList &list)
{
    const QString fine = Say::tr("%n check(s) found nothing wrong", nullptr, list.fine.size());
    return list.unknown.isEmpty()
        ? fine
        : Say::tr("%1; %2").arg(
            fine, Say::tr("%n had nothing to look at yet", nullptr, list.unknown.size()));
}

QString findingText(const Finding &finding)
{
    QStringList texts;
    for (const Fact &fact : finding.facts) {
        texts.append(fact.text);
    }
    QString text = texts.join(QLatin1Char(' '));
    if (!text.isEmpty()) {
        text[0] = text.at(0).toUpper();
    }
    return text;
}

QString verdictText(Verdict verdict)
{
    switch (verdict) {
    case Verdict::Good:
        return Say::tr("fine");
    case Verdict::Doubtful:
        return Say::tr("look at this");
    case Verdict::Fault:
        return Say::tr("fault");
    case Verdict::NotChecked:
        break;
    }
    return Say::tr("not looked at");
}

QList<Finding> withSeenByRoot(const QList<Finding> &own, const QList<Finding> &ofRoot)
{
    QList<Finding> merged = own;
    for (Finding &finding : merged) {
        const auto seen = std::find_if(ofRoot.begin(), ofRoot.end(),
            [&finding](const Finding &candidate) { return candidate.check == finding.check; });
        if (finding.verdict == Verdict::NotChecked && seen != ofRoot.end()) {
            finding = *seen;
        }
    }
    return merged;
}

QString checkupReport(const QList<Finding> &findings, const QStringList &logins)
{
    QStringList lines;
    for (const Finding &finding : findings) {
        lines.append(QStringLiteral("%1: %2. %3")
                         .arg(checkTitle(finding.check), verdictText(finding.verdict),
                             findingText(finding)));
    }
    return withoutAccount(lines.join(QLatin1Char('\n')) + QLatin1Char('\n'), logins);
}

} // namespace desktop
