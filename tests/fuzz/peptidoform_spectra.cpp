// SPDX-License-Identifier: Apache-2.0
//
// Door: peptidoforms, charges and energies for the spectra of modified peptides, with the outputs of the network from
// the fuzzer. Promises: the monoisotopic peaks are those that naive code finds, each ion weighed as a peptide of its
// own; they ascend within 0 to 2000 m/z; what cannot be read has no peaks and a warning; a failure leaves the output as
// it was; two precursors have the peaks that each has alone; nothing leaks.
#include "PeptidoformIons.h"
#include "PeptidoformRows.h"
#include "PeptidoformSupport.h"

#include <zav/PeptidoformSpectrumPredictor.h>

#include <optional>

namespace zav::fuzz {
namespace {

using Predictor = PeptidoformSpectrumPredictor;

constexpr double LOWEST_INTENSITY = 0.04; // of the base peak
constexpr double LOWEST_ISOTOPE = 0.025;
constexpr double HIGHEST_MZ = 2000.0;
constexpr double ROUNDING = 1e-9; // of the intensities, relative
constexpr double MZ_ROUNDING = 1e-5;
constexpr double MOST_MASS = 1e6; // Da; the sums of larger ones lose the digits of the smaller

constexpr double PROTON = 1.007276466621; // Da, CODATA 2018

struct Ion
{
    const peptidoformIons::Series *series = nullptr;
    int number = 0;
    double mz = 0.0;
    double intensity = 0.0;
};

using Ions = std::vector<Ion>;

double massOf(const ElementalComposition &composition)
{
    return composition.monoisotopicMass();
}

double massOfLoss(const QString &name)
{
    if (name == QLatin1String("-H2O"))
        return massOf({.hydrogen = 2, .oxygen = 1});
    if (name == QLatin1String("-NH3"))
        return massOf({.hydrogen = 3, .nitrogen = 1});
    if (name == QLatin1String("-H3PO4"))
        return massOf({.hydrogen = 3, .oxygen = 4, .phosphorus = 1});
    if (name == QLatin1String("-2H3PO4"))
        return 2 * massOf({.hydrogen = 3, .oxygen = 4, .phosphorus = 1});
    if (name == QLatin1String("-CH4OS"))
        return massOf({.carbon = 1, .hydrogen = 4, .oxygen = 1, .sulfur = 1});
    if (name == QLatin1String("-CO2"))
        return massOf({.carbon = 1, .oxygen = 2});
    require(name.isEmpty(), "a loss is one of the six");
    return 0.0;
}

/// What an ion holds of the peptidoform, as a peptide of its own.
Peptidoform partOf(const Peptidoform &whole, bool isCTerminal, int number)
{
    const int before = isCTerminal ? whole.length() - number : 0;
    QList<PlacedModification> placed;
    for (PlacedModification each : whole.modifications()) {
        if (isCTerminal ? each.position > before : each.position <= number) {
            each.position -= before;
            placed.append(each);
        }
    }
    return Peptidoform(whole.sequence().mid(before, number), placed);
}

/// Whether a residue of the part, or two of them, can lose that.
bool canLose(const Peptidoform &part, const QString &loss)
{
    if (loss.isEmpty() || loss == QLatin1String("-H2O") || loss == QLatin1String("-NH3"))
        return true;
    const bool isTwice = loss == QLatin1String("-2H3PO4");
    const QString once = isTwice ? QStringLiteral("-H3PO4") : loss;
    int sites = 0;
    for (const PlacedModification &each : part.modifications()) {
        if (each.position < 1 || each.position > part.length())
            continue;
        const auto losses = modifications::neutralLosses(each.modification, part.sequence().at(each.position - 1));
        sites += static_cast<int>(std::count_if(losses.cbegin(), losses.cend(),
                                                [&](const NeutralLoss &found) { return found.name == once; }));
    }
    return sites >= (isTwice ? 2 : 1);
}

double mzOf(const Peptidoform &part, const peptidoformIons::Series &series)
{
    double mass = part.monoisotopicMass() - massOfLoss(series.neutralLoss);
    if (series.ionType != u'y')
        mass -= massOf({.hydrogen = 2, .oxygen = 1});
    if (series.ionType == u'a')
        mass -= massOf({.carbon = 1, .oxygen = 1});
    return mass / series.charge + PROTON;
}

/// All ions of the precursor that the network sees; nothing where rounding might put one on either side of a bound.
std::optional<Ions> naiveIons(const PeptidoformPrecursor &precursor, const std::vector<float> &values)
{
    Ions ions;
    const Peptidoform &whole = precursor.peptidoform;
    for (int bond = 1; bond < whole.length(); ++bond) {
        const Peptidoform nTerminal = partOf(whole, false, bond);
        const Peptidoform cTerminal = partOf(whole, true, whole.length() - bond);
        for (std::size_t column = 0; column < peptidoformIons::SERIES_COUNT; ++column) {
            const peptidoformIons::Series &series = peptidoformIons::series()[column];
            const Peptidoform &part = series.ionType == u'y' ? cTerminal : nTerminal;
            const int number = part.length();
            const double intensity =
                values[static_cast<std::size_t>(bond - 1) * peptidoformIons::SERIES_COUNT + column];
            if (!(intensity > 0.0) || series.charge > precursor.charge || number > series.maximumNumber ||
                !canLose(part, series.neutralLoss))
                continue;
            const double mz = mzOf(part, series);
            if (std::abs(mz) < MZ_ROUNDING || std::abs(mz - HIGHEST_MZ) < MZ_ROUNDING)
                return std::nullopt;
            if (mz > 0.0 && mz < HIGHEST_MZ)
                ions.push_back({&series, number, mz, intensity});
        }
    }
    return ions;
}

bool isPeakOf(const Ion &ion, const FragmentPeak &peak)
{
    return peak.isotope == 0 && peak.ionType == ion.series->ionType && peak.ionNumber == ion.number &&
           peak.charge == ion.series->charge && peak.neutralLoss == ion.series->neutralLoss;
}

void requireNaivePeaks(const QList<FragmentPeak> &spectrum, const Ions &ions)
{
    double highest = 0.0;
    for (const Ion &ion : ions)
        highest = std::max(highest, ion.intensity);
    qsizetype found = 0;
    for (const Ion &ion : ions) {
        const double intensity = ion.intensity / highest;
        const auto peak = std::find_if(spectrum.cbegin(), spectrum.cend(),
                                       [&ion](const FragmentPeak &each) { return isPeakOf(ion, each); });
        if (peak == spectrum.cend()) {
            require(!(intensity >= LOWEST_INTENSITY + ROUNDING), "a strong ion has a peak");
            continue;
        }
        ++found;
        require(intensity >= LOWEST_INTENSITY - ROUNDING, "a weak ion has no peak");
        require(std::abs(peak->intensity - intensity) <= ROUNDING, "the base peak is 1");
        require(std::abs(peak->mz - ion.mz) <= MZ_ROUNDING, "an ion weighs what its part of the peptide does");
    }
    const auto all =
        std::count_if(spectrum.cbegin(), spectrum.cend(), [](const FragmentPeak &each) { return each.isotope == 0; });
    require(found == all, "every peak is an ion");
}

void requireSpectrum(const QList<FragmentPeak> &spectrum, const PeptidoformPrecursor &precursor, IsotopePeaks isotopes)
{
    double last = 0.0;
    for (const FragmentPeak &peak : spectrum) {
        require(peak.mz >= last && peak.mz <= HIGHEST_MZ, "peaks ascend to 2000 m/z");
        require(peak.intensity >= (peak.isotope == 0 ? LOWEST_INTENSITY : LOWEST_ISOTOPE), "no peak is too low");
        require(peak.isotope == 0 || isotopes == IsotopePeaks::Included, "isotope peaks are asked for");
        require(peak.charge <= precursor.charge, "an ion has no more charges than its precursor");
        last = peak.mz;
    }
}

bool hasLargeMass(const Peptidoform &peptidoform)
{
    const auto &placed = peptidoform.modifications();
    return std::any_of(placed.cbegin(), placed.cend(),
                       [](const PlacedModification &each) { return !(std::abs(each.modification.mass) <= MOST_MASS); });
}

bool canBeRead(const PeptidoformPrecursor &precursor)
{
    const auto &placed = precursor.peptidoform.modifications();
    return precursor.charge >= 1 && precursor.charge <= Predictor::HIGHEST_CHARGE &&
           peptidoformRows::problemOf(precursor.peptidoform).isEmpty() &&
           std::all_of(placed.cbegin(), placed.cend(),
                       [](const PlacedModification &each) { return std::isfinite(each.modification.mass); });
}

QByteArray bytesOf(const QList<FragmentPeak> &spectrum)
{
    QByteArray bytes;
    for (const FragmentPeak &peak : spectrum)
        bytes += bits(peak.mz, peak.intensity, QString(peak.ionType), peak.ionNumber, peak.charge, peak.neutralLoss,
                      peak.isotope);
    return bytes;
}

using Spectra = QList<QList<FragmentPeak>>;

/// The spectrum of one precursor; nothing where the call fails.
std::optional<QList<FragmentPeak>> tryAlone(Predictor *predictor, const PeptidoformPrecursor &precursor,
                                            IsotopePeaks isotopes)
{
    const Spectra before = {{}, {}};
    Spectra spectra = before;
    const Error error = predictor->predict({precursor}, &spectra, isotopes);
    const double energy = precursor.collisionEnergy;
    const bool isEnergy = std::isnan(energy) || (energy >= 10 && energy <= 60);
    require(error.equals(InvalidInput) == !isEnergy, "an energy is unknown or from 10 to 60");
    if (error.hasError()) {
        require(spectra.size() == before.size(), "a failure leaves the output as it was");
        return std::nullopt;
    }
    require(spectra.size() == 1, "there is a list for every precursor");
    if (!canBeRead(precursor))
        require(spectra.first().isEmpty() && !error.warnings().isEmpty(), "what cannot be read is told");
    return spectra.first();
}

void tryPrecursor(Predictor *predictor, PeptidoformPrecursor precursor, const std::vector<float> &values,
                  IsotopePeaks isotopes)
{
    runtime().results = values;
    const auto spectrum = tryAlone(predictor, precursor, isotopes);
    if (!spectrum)
        return;
    requireSpectrum(*spectrum, precursor, isotopes);
    if (!canBeRead(precursor))
        return;
    if (!hasLargeMass(precursor.peptidoform)) {
        if (const std::optional<Ions> ions = naiveIons(precursor, values))
            requireNaivePeaks(*spectrum, *ions);
    }

    PeptidoformPrecursor other = precursor;
    other.charge = 1 + precursor.charge % Predictor::HIGHEST_CHARGE;
    const auto otherSpectrum = tryAlone(predictor, other, isotopes);
    runtime().results.insert(runtime().results.end(), values.begin(), values.end());
    Spectra both;
    require(!predictor->predict({precursor, other}, &both, isotopes).hasError() && otherSpectrum.has_value(),
            "two are predicted where each is");
    require(both.size() == 2 && bytesOf(both[0]) == bytesOf(*spectrum) && bytesOf(both[1]) == bytesOf(*otherSpectrum),
            "two precursors have the peaks that each has alone");
}

} // namespace

void tryInput(const QByteArray &input)
{
    FuzzedDataProvider data = dataOf(input);
    PeptidoformPrecursor precursor;
    precursor.charge = data.ConsumeIntegralInRange(-1, 8);
    if (data.ConsumeBool())
        precursor.collisionEnergy = data.ConsumeBool() ? takeNumber(&data) : data.ConsumeIntegralInRange(5, 65);
    const IsotopePeaks isotopes = data.ConsumeBool() ? IsotopePeaks::Included : IsotopePeaks::LeftOut;
    const bool hasAnySize = data.ConsumeIntegralInRange(0, 15) == 15;
    precursor.peptidoform = takePeptidoform(&data);
    std::vector<float> values = takeFloats(&data, 200);
    const int bonds = std::max(precursor.peptidoform.length() - 1, 1);
    if (!hasAnySize)
        values = repeated(values, static_cast<std::size_t>(bonds * peptidoformIons::SERIES_COUNT));
    runtime().operations = {
        {"init"},
        {peptidoformRows::NETWORK_INPUT, 1, {-1, peptidoformRows::ROW_COUNT, peptidoformRows::COLUMN_COUNT}},
        {"precursors", 1, {-1, 3}},
        {"intensities"}};
    runtime().resultShape = {};
    {
        Predictor predictor;
        require(!predictor.init(fileWith("network.pb", "graph")).hasError(), "the network is loaded");
        tryPrecursor(&predictor, precursor, values, isotopes);
    }
    requireNothingLives();
}

} // namespace zav::fuzz
