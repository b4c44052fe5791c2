// SPDX-License-Identifier: Apache-2.0
//
// Door: peptides, modifications, rules of modifications and tolerances as a user writes them.
// Promises: what is read and written reads the same; positions lie within the peptide and ascend; a message says what
// is wrong with any other text.
#include "FuzzSupport.h"
#include "ModificationRule.h"
#include "PeptidoformText.h"
#include "SpectrumComparison.h"

#include <zav/Peptidoform.h>

#include <cmath>

namespace zav::fuzz {
namespace {

void tryPeptidoform(const QString &text)
{
    const Result<Peptidoform> read = Peptidoform::fromProForma(text);
    require(read.hasError() == !read.error().message().isEmpty(), "text that is not ProForma says why");
    if (read.hasError())
        return;
    const Peptidoform &peptidoform = read.value();
    int last = -1;
    for (const PlacedModification &placed : peptidoform.modifications()) {
        require(placed.position > last && placed.position <= peptidoform.length() + 1,
                "modifications ascend within the peptide");
        require(std::isfinite(placed.modification.mass) && std::abs(placed.modification.mass) <= 1e6,
                "a modification has a mass");
        last = placed.position;
    }
    require(peptidoform.length() > 0, "a peptide has a residue");
    const Result<Peptidoform> again = Peptidoform::fromProForma(peptidoform.toProForma());
    require(!again.hasError() && again.value() == peptidoform, "a written peptidoform reads the same");
    require(again.value().toProForma() == peptidoform.toProForma(), "its text is settled");
    const double mass = peptidoform.monoisotopicMass();
    const double massAgain = again.value().monoisotopicMass();
    require(mass == massAgain || (std::isnan(mass) && std::isnan(massAgain)), "it weighs the same");
}

void tryRule(const QString &text)
{
    const Result<ModificationRule> rule = ModificationRule::parse(text);
    require(rule.hasError() == !rule.error().message().isEmpty(), "text that is no rule says why");
    if (rule.hasError())
        return;
    const Result<ModificationRule> again = ModificationRule::parse(rule.value().text());
    require(!again.hasError() && again.value().text() == rule.value().text(), "a written rule reads the same");
    require(again.value().sites == rule.value().sites && again.value().modification == rule.value().modification,
            "a written rule has the same sites");
}

} // namespace

void tryInput(const QByteArray &input)
{
    const QString text = QString::fromUtf8(input);
    tryPeptidoform(text);
    tryRule(text);
    const Result<Peptidoform> asWritten = readPeptidoform(text);
    require(asWritten.hasError() == !asWritten.error().message().isEmpty(), "a peptide or a message");
    const Result<Modification> modification = modifications::fromText(text);
    require(modification.hasError() == !modification.error().message().isEmpty(), "a modification or a message");
    const Result<MassTolerance> tolerance = parseMassTolerance(text);
    require(tolerance.hasError() || (tolerance.value().value > 0 && std::isfinite(tolerance.value().value)),
            "a tolerance is positive");
}

} // namespace zav::fuzz
