// SPDX-License-Identifier: MIT
#include "desktop/rights/findings_text.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace desktop {

namespace {

const QLatin1String checkKey("check");
const QLatin1String verdictKey("verdict");
const QLatin1String factsKey("facts");
const QLatin1String textKey("text");
const QLatin1String kindKey("remedy");
const QLatin1String detailKey("detail");

constexpr int lastRemedy = int(RemedyKind::ConnectLater);
constexpr int lastVerdict = int(Verdict::NotChecked);

void put(QJsonObject &object, const Remedy &remedy)
{
    object.insert(kindKey, int(remedy.kind));
    object.insert(detailKey, remedy.detail);
}

std::optional<int> numberIn(const QJsonObject &object, QLatin1String key, int last)
{
    const int number = object.value(key).toInt(-1);
    return number >= 0 && number <= last ? std::optional<int>(number) : std::nullopt;
}

std::optional<Remedy> remedyIn(const QJsonObject &object)
{
    const std::optional<int> kind = numberIn(object, kindKey, lastRemedy);
    return kind ? std::optional<Remedy>({RemedyKind(*kind), object.value(detailKey).toString()})
                : std::nullopt;
}

std::optional<Finding> findingIn(const QJsonObject &object)
{
    const std::optional<int> verdict = numberIn(object, verdictKey, lastVerdict);
    const std::optional<Remedy> remedy = remedyIn(object);
    if (!verdict || !remedy) {
        return std::nullopt;
    }
    Finding finding{object.value(checkKey).toString(), Verdict(*verdict), {}, *remedy};
    for (const auto &value : object.value(factsKey).toArray()) {
        const std::optional<Remedy> own = remedyIn(value.toObject());
        if (!own) {
            return std::nullopt;
        }
        finding.facts.append({value.toObject().value(textKey).toString(), *own});
    }
    return finding;
}

} // namespace

QByteArray findingsText(const QList<Finding> &findings)
{
    QJsonArray rows;
    for (const Finding &finding : findings) {
        QJsonArray facts;
        for (const Fact &fact : finding.facts) {
            QJsonObject object{{textKey, fact.text}};
            put(object, fact.remedy);
            facts.append(object);
        }
        QJsonObject row{
            {checkKey, finding.check}, {verdictKey, int(finding.verdict)}, {factsKey, facts}};
        put(row, finding.remedy);
        rows.append(row);
    }
    return QJsonDocument(rows).toJson(QJsonDocument::Compact) + '\n';
}

std::optional<QList<Finding>> findingsFrom(const QByteArray &text)
{
    const QJsonDocument document = QJsonDocument::fromJson(text);
    if (!document.isArray()) {
        return std::nullopt;
    }
    QList<Finding> findings;
    for (const auto &value : document.array()) {
        const std::optional<Finding> finding = findingIn(value.toObject());
        if (!finding) {
            return std::nullopt;
        }
        findings.append(*finding);
    }
    return findings;
}

} // namespace desktop
