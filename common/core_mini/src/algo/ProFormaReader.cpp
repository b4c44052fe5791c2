// SPDX-License-Identifier: Apache-2.0
#include "ProFormaReader.h"

#include "QuotedText.h"

#include <utility>

namespace zav {

namespace {

bool isResidue(QChar character)
{
    return character >= u'A' && character <= u'Z';
}

/// `index` counts from 0, the message from 1.
Error problem(const QString &what, qsizetype index)
{
    return {InvalidInput, QStringLiteral("%1 at character %2").arg(what).arg(index + 1)};
}

Error notSupported(const char *what, qsizetype index)
{
    return problem(QStringLiteral("unsupported: %1").arg(QLatin1String(what)), index);
}

struct Unsupported
{
    const char *text;
    const char *what;
};

// Characters between residues.
constexpr Unsupported OUTSIDE_BRACKETS[] = {
    {"//", "cross-linked or branched peptides ('//')"},
    {"/", "a charge ('/')"},
    {"+", "several peptides in one spectrum ('+')"},
    {"(", "ranges of residues ('(')"},
    {")", "ranges of residues (')')"},
    {"{", "labile modifications ('{')"},
    {"}", "labile modifications ('}')"},
    {"?", "modifications at an unknown place ('?')"},
    {"^", "modifications at an unknown place ('^')"},
    {"<", "isotopes of the whole peptide ('<')"},
};

// Characters within a modification's brackets.
constexpr Unsupported WITHIN_BRACKETS[] = {
    {"|", "choices and remarks ('|')"},
    {"#", "labels of groups, scores and cross-links ('#')"},
    {"[", "brackets within brackets ('[')"},
};

} // namespace

Result<Peptidoform> ProFormaReader::read()
{
    using Step = Error (ProFormaReader::*)();
    for (const Step step :
         {&ProFormaReader::checkLength, &ProFormaReader::readFixedModifications, &ProFormaReader::readNTerminus,
          &ProFormaReader::readResidues, &ProFormaReader::readCTerminus, &ProFormaReader::placeFixedModifications}) {
        if (Error error = (this->*step)(); error.hasError())
            return error;
    }
    QList<PlacedModification> modifications;
    modifications.reserve(m_placed.size());
    for (auto placed = m_placed.cbegin(); placed != m_placed.cend(); ++placed)
        modifications.append({placed.key(), placed.value()});
    return Peptidoform(m_sequence, modifications);
}

Error ProFormaReader::checkLength()
{
    if (m_text.isEmpty())
        return {InvalidInput, QStringLiteral("no residue at all")};
    if (m_text.size() > Peptidoform::MAXIMUM_TEXT_LENGTH)
        return {InvalidInput,
                QStringLiteral("%1 characters, more than %2").arg(m_text.size()).arg(Peptidoform::MAXIMUM_TEXT_LENGTH)};
    return {};
}

Error ProFormaReader::readFixedModifications()
{
    while (isAt(u'<')) {
        FixedModification fixed;
        fixed.begin = m_at;
        if (!m_text.mid(m_at + 1).startsWith(u'['))
            return unexpected(m_at);
        ++m_at;
        if (Error error = readBrackets(&fixed.modification); error.hasError())
            return error;
        if (Error error = readFixedSites(&fixed); error.hasError())
            return error;
        m_fixed.append(fixed);
    }
    return {};
}

Error ProFormaReader::readFixedSites(FixedModification *fixed)
{
    if (!isAt(u'@'))
        return problem(QStringLiteral("'@' and a site are missing behind a fixed modification"), m_at);
    ++m_at;
    const qsizetype end = m_text.indexOf(u'>', m_at);
    if (end < 0)
        return problem(QStringLiteral("'<' is never closed"), fixed->begin);
    for (const QStringView site : m_text.mid(m_at, end - m_at).split(u',')) {
        if (Error error = readFixedSite(site.trimmed(), m_at, fixed); error.hasError())
            return error;
        m_at += site.size() + 1;
    }
    return {};
}

Error ProFormaReader::readFixedSite(QStringView site, qsizetype begin, FixedModification *fixed)
{
    FixedSite place;
    if (site.startsWith(QLatin1String("N-term"), Qt::CaseInsensitive))
        place.kind = FixedSite::NTerminus;
    else if (site.startsWith(QLatin1String("C-term"), Qt::CaseInsensitive))
        place.kind = FixedSite::CTerminus;

    constexpr qsizetype TERMINUS_LENGTH = 6;
    const QStringView residue = place.kind == FixedSite::Residue ? site : site.mid(TERMINUS_LENGTH);
    if (residue.size() == 1 && place.kind == FixedSite::Residue)
        place.residue = residue[0];
    else if (residue.size() == 2 && residue[0] == u':' && place.kind != FixedSite::Residue)
        place.residue = residue[1];
    const bool isAnyResidue = residue.isEmpty() && place.kind != FixedSite::Residue;
    if (!isAnyResidue && !isResidue(place.residue))
        return problem(QStringLiteral("no site %1 of a fixed modification").arg(quotedText(site)), begin);
    fixed->sites.append(place);
    return {};
}

Error ProFormaReader::readNTerminus()
{
    if (!isAt(u'['))
        return {};
    Modification modification;
    if (Error error = readBrackets(&modification); error.hasError())
        return error;
    if (isAt(u'['))
        return problem(secondModification(0), m_at);
    if (isAt(u'?') || isAt(u'^'))
        return unexpected(m_at);
    if (!isAt(u'-'))
        return problem(QStringLiteral("'-' is missing behind the modification of the N-terminus"), m_at);
    ++m_at;
    m_placed.insert(0, modification);
    return {};
}

Error ProFormaReader::readResidues()
{
    while (m_at < m_text.size() && m_text[m_at] != u'-') {
        if (isResidue(m_text[m_at])) {
            m_sequence += m_text[m_at++];
            continue;
        }
        if (!isAt(u'[') || m_sequence.isEmpty())
            return unexpected(m_at);
        const int position = static_cast<int>(m_sequence.size());
        if (m_placed.contains(position))
            return problem(secondModification(position), m_at);
        if (Error error = readBrackets(&m_placed[position]); error.hasError())
            return error;
    }
    return m_sequence.isEmpty() ? problem(QStringLiteral("no residue"), m_at) : Error();
}

Error ProFormaReader::readCTerminus()
{
    if (m_at == m_text.size())
        return {};
    ++m_at; // the '-'
    if (!isAt(u'['))
        return problem(QStringLiteral("no modification of the C-terminus behind '-'"), m_at);
    if (Error error = readBrackets(&m_placed[static_cast<int>(m_sequence.size()) + 1]); error.hasError())
        return error;
    if (isAt(u'['))
        return problem(secondModification(static_cast<int>(m_sequence.size()) + 1), m_at);
    return m_at == m_text.size() ? Error() : unexpected(m_at);
}

Error ProFormaReader::readBrackets(Modification *modification)
{
    const qsizetype begin = m_at + 1;
    const qsizetype end = m_text.indexOf(u']', begin);
    if (end < 0)
        return problem(QStringLiteral("'[' is never closed"), m_at);
    const QStringView tag = m_text.mid(begin, end - begin);
    for (const Unsupported &unsupported : WITHIN_BRACKETS) {
        const qsizetype place = tag.indexOf(QLatin1String(unsupported.text));
        if (place >= 0)
            return notSupported(unsupported.what, begin + place);
    }
    m_at = end + 1;
    const Result<Modification> read = modifications::fromText(tag.toString());
    if (read.hasError())
        return problem(read.error().message(), begin);
    *modification = read.value();
    return {};
}

Error ProFormaReader::placeFixedModifications()
{
    for (const FixedModification &fixed : std::as_const(m_fixed)) {
        for (const FixedSite &site : fixed.sites) {
            if (Error error = placeFixed(fixed, site); error.hasError())
                return error;
        }
    }
    return {};
}

Error ProFormaReader::placeFixed(const FixedModification &fixed, const FixedSite &site)
{
    const int length = static_cast<int>(m_sequence.size());
    const int first = site.kind == FixedSite::CTerminus ? length : 1;
    const int last = site.kind == FixedSite::NTerminus ? 1 : length;
    for (int residue = first; residue <= last; ++residue) {
        if (!site.residue.isNull() && m_sequence[residue - 1] != site.residue)
            continue;
        int position = residue;
        if (site.kind != FixedSite::Residue)
            position = site.kind == FixedSite::NTerminus ? 0 : length + 1;
        if (m_placed.contains(position))
            return problem(secondModification(position) + QStringLiteral(", the fixed one"), fixed.begin);
        m_placed.insert(position, fixed.modification);
    }
    return {};
}

QString ProFormaReader::secondModification(int position) const
{
    QString place = QStringLiteral("residue %1").arg(position);
    if (position == 0)
        place = QStringLiteral("the N-terminus");
    else if (position > m_sequence.size())
        place = QStringLiteral("the C-terminus");
    return QStringLiteral("a second modification of ") + place;
}

Error ProFormaReader::unexpected(qsizetype index) const
{
    const QStringView rest = m_text.mid(index);
    for (const Unsupported &unsupported : OUTSIDE_BRACKETS) {
        if (rest.startsWith(QLatin1String(unsupported.text)))
            return notSupported(unsupported.what, index);
    }
    const QChar character = rest[0];
    if (character >= u'a' && character <= u'z')
        return problem(QStringLiteral("no residue '%1' (residues are capitals)").arg(character), index);
    if (character > u' ' && character <= u'~')
        return problem(QStringLiteral("unexpected '%1'").arg(character), index);
    return problem(QStringLiteral("unexpected U+%1").arg(character.unicode(), 4, 16, QLatin1Char('0')), index);
}

} // namespace zav
