// SPDX-License-Identifier: Apache-2.0
#include "Enzyme.h"

#include "PrintableText.h"

#include <algorithm>
#include <string_view>

namespace zav {

// Each set names residues; an empty one stands for every residue.
struct EnzymeRule
{
    const char *name;
    const char *synonyms; // as `plainName` leaves them, a blank between
    const char *pattern;
    std::string_view before;
    std::string_view notAfter;
    std::string_view after;
    char notTwoBefore = 0;
    bool cuts = true;
};

namespace {

constexpr std::array<EnzymeRule, 14> RULES = {{
    {"Trypsin", "", "(?<=[KR])(?!P)", "KR", "P", ""},
    {"Trypsin/P", "", "(?<=[KR])", "KR", "", ""},
    {"Lys-C", "trypsink", "(?<=K)(?!P)", "K", "P", ""},
    {"Lys-C/P", "", "(?<=K)", "K", "", ""},
    {"Lys-N", "", "(?=K)", "", "", "K"},
    {"Arg-C", "trypsinr clostripain", "(?<=R)(?!P)", "R", "P", ""},
    {"Glu-C", "glutamylendopeptidase staphylococcalprotease", "(?<=[^E]E)", "E", "", "", 'E'},
    {"V8-E", "", "(?<=[EZ])(?!P)", "EZ", "P", ""},
    {"V8-DE", "", "(?<=[BDEZ])(?!P)", "BDEZ", "P", ""},
    {"Asp-N", "", "(?=[BD])", "", "", "BD"},
    {"Asp-N_ambic", "", "(?=[DE])", "", "", "DE"},
    {"Chymotrypsin", "", "(?<=[FYWL])(?!P)", "FYWL", "P", ""},
    {"PepsinA", "", "(?<=[FL])", "FL", "", ""},
    {"none", "nocleavage", "", "", "", "", 0, false},
}};

constexpr char UNSPECIFIC[] = "unspecific";
constexpr char UNSPECIFIC_SYNONYMS[] = "unspecificcleavage nonspecific";

QString plainName(const QString &name)
{
    static const QRegularExpression separators(QStringLiteral("[-_/\\s]"));
    return name.toLower().remove(separators);
}

bool isNamed(const QString &wanted, const char *name, const char *synonyms)
{
    return wanted == plainName(QString::fromLatin1(name)) ||
           QString::fromLatin1(synonyms).split(QLatin1Char(' ')).contains(wanted);
}

std::array<bool, 256> residueSet(std::string_view members, bool contained)
{
    std::array<bool, 256> set{};
    set.fill(members.empty() || !contained);
    for (const char member : members)
        set[static_cast<unsigned char>(member)] = contained;
    return set;
}

// Every pair of letters once or more.
QByteArray allPairs()
{
    QByteArray pairs;
    for (char first = 'A'; first <= 'Z'; ++first) {
        for (char second = 'A'; second <= 'Z'; ++second)
            pairs.append(first).append(second);
    }
    return pairs;
}

} // namespace

Result<Enzyme> Enzyme::named(const QString &name)
{
    const QString wanted = plainName(name);
    Enzyme enzyme;
    const auto rule = std::find_if(RULES.begin(), RULES.end(), [&](const EnzymeRule &candidate) {
        return !wanted.isEmpty() && isNamed(wanted, candidate.name, candidate.synonyms);
    });
    if (rule != RULES.end()) {
        enzyme.follow(*rule);
        return enzyme;
    }
    if (!wanted.isEmpty() && isNamed(wanted, UNSPECIFIC, UNSPECIFIC_SYNONYMS)) {
        enzyme.m_name = QString::fromLatin1(UNSPECIFIC);
        enzyme.m_isUnspecific = true;
        return enzyme;
    }
    return Error(
        InvalidInput,
        QStringLiteral("enzyme is '%1', must be one of %2").arg(displayText(name), names().join(QStringLiteral(", "))));
}

Result<Enzyme> Enzyme::withPattern(const QString &pattern)
{
    Enzyme enzyme;
    enzyme.m_pattern = pattern;
    enzyme.m_isExpression = true;
    enzyme.m_expression.setPattern(pattern);
    if (pattern.isEmpty() || !enzyme.m_expression.isValid())
        return Error(InvalidInput,
                     QStringLiteral("cleavagePattern is '%1', must be a regular expression (%2)")
                         .arg(displayText(pattern),
                              pattern.isEmpty() ? QStringLiteral("it is empty") : enzyme.m_expression.errorString()));
    enzyme.m_expression.optimize();
    QList<int> sites;
    if (Error error = enzyme.findSites(allPairs(), &sites); error.hasError())
        return error;
    return enzyme;
}

QStringList Enzyme::names()
{
    QStringList names;
    for (const EnzymeRule &rule : RULES)
        names.append(QString::fromLatin1(rule.name));
    return names << QString::fromLatin1(UNSPECIFIC);
}

void Enzyme::follow(const EnzymeRule &rule)
{
    m_name = QString::fromLatin1(rule.name);
    m_pattern = QString::fromLatin1(rule.pattern);
    m_cutsBefore = !rule.after.empty();
    if (!rule.cuts)
        return;
    m_before = residueSet(rule.before, true);
    m_after = rule.after.empty() ? residueSet(rule.notAfter, false) : residueSet(rule.after, true);
    m_notTwoBefore = rule.notTwoBefore;
}

Error Enzyme::findSites(QByteArrayView sequence, QList<int> *sites) const
{
    sites->clear();
    if (m_isExpression)
        return findMatches(sequence, sites);
    for (qsizetype place = 1; place < sequence.size(); ++place) {
        if (isSite(sequence, place))
            sites->append(static_cast<int>(place));
    }
    return {};
}

bool Enzyme::isSite(QByteArrayView sequence, qsizetype place) const
{
    const auto letter = [&](qsizetype i) { return static_cast<unsigned char>(sequence[i]); };
    if (!m_before[letter(place - 1)] || !m_after[letter(place)])
        return false;
    return m_notTwoBefore == 0 || (place >= 2 && sequence[place - 2] != m_notTwoBefore);
}

Error Enzyme::findMatches(QByteArrayView sequence, QList<int> *sites) const
{
    auto matches = m_expression.globalMatch(QString::fromLatin1(sequence));
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        if (match.capturedLength() > 0)
            return {InvalidInput, QStringLiteral("cleavagePattern is '%1', must match between two residues, as "
                                                 "(?<=[KR])(?!P) does, but matches '%2'")
                                      .arg(displayText(m_pattern), displayText(match.captured(), 20))};
        const auto place = match.capturedStart();
        if (place > 0 && place < sequence.size())
            sites->append(static_cast<int>(place));
    }
    return {};
}

} // namespace zav
