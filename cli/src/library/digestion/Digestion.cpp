// SPDX-License-Identifier: Apache-2.0
#include "Digestion.h"

#include "Enzyme.h"

namespace zav {

namespace {

// A peptide's length is stored in 16 bits; no protein of a known proteome but titin comes near.
constexpr int LONGEST_PEPTIDE = 65535;

Error outOfRange(const char *field, int value, const QString &rule)
{
    return {InvalidInput,
            QStringLiteral("%1 is %2, must be %3").arg(QString::fromLatin1(field), QString::number(value), rule)};
}

QString range(int lowest, int highest)
{
    return QStringLiteral("within %1 to %2").arg(lowest).arg(highest);
}

} // namespace

Error DigestionOptions::checkForParameterErrors() const
{
    const Result<Enzyme> chosen =
        cleavagePattern.isEmpty() ? Enzyme::named(enzyme) : Enzyme::withPattern(cleavagePattern);
    if (chosen.hasError())
        return chosen.error();
    if (missedCleavages < 0)
        return outOfRange("missedCleavages", missedCleavages, QStringLiteral("0 or more"));
    if (minimumLength < 1 || minimumLength > LONGEST_PEPTIDE)
        return outOfRange("minimumLength", minimumLength, range(1, LONGEST_PEPTIDE));
    if (maximumLength < minimumLength || maximumLength > LONGEST_PEPTIDE)
        return outOfRange("maximumLength", maximumLength, range(minimumLength, LONGEST_PEPTIDE));
    return {};
}

} // namespace zav
