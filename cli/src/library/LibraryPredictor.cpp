// SPDX-License-Identifier: Apache-2.0
#include "LibraryPredictor.h"

#include "NetworkLoading.h"

#include <QtCore/QMap>

#include <utility>

namespace zav {

namespace {

using Indices = QList<qsizetype>;

/// Groups the peptidoforms by a key and hands them over in blocks, by ascending key. Those without a precursor, which
/// may be of any length, are left out.
template <typename Key, typename Predict>
Error inBlocks(const QList<LibraryPrecursors> &precursors, const Key &keyOf, const Predict &predict)
{
    QMap<int, Indices> groups;
    for (qsizetype i = 0; i < precursors.size(); ++i) {
        if (precursors[i].charges != 0)
            groups[keyOf(precursors[i])].append(i);
    }
    for (const Indices &group : std::as_const(groups)) {
        for (qsizetype first = 0; first < group.size(); first += LibraryPredictor::PEPTIDOFORMS_PER_RUN) {
            Error error = predict(group.mid(first, LibraryPredictor::PEPTIDOFORMS_PER_RUN));
            if (error.hasError())
                return error;
        }
    }
    return {};
}

/// The peptidoforms of a block, filled up by two that take turns, because equal neighbours would share their place.
QList<Peptidoform> filledUp(const QList<LibraryPrecursors> &precursors, const Indices &indices)
{
    QList<Peptidoform> block;
    block.reserve(LibraryPredictor::PEPTIDOFORMS_PER_RUN);
    for (const qsizetype index : indices)
        block.append(precursors[index].peptidoform);
    const int length = block.constFirst().length();
    std::pair<Peptidoform, Peptidoform> fillers{Peptidoform(QString(length, u'A')), Peptidoform(QString(length, u'G'))};
    if (block.constLast() == fillers.first)
        std::swap(fillers.first, fillers.second);
    while (block.size() < LibraryPredictor::PEPTIDOFORMS_PER_RUN) {
        block.append(fillers.first);
        std::swap(fillers.first, fillers.second);
    }
    return block;
}

} // namespace

Error LibraryPredictor::load(const ModelFolder &folder, bool withTimes)
{
    Error error = loadNetwork(folder.network(NetworkUse::Peptidoforms), &m_spectra);
    return error.hasError() || !withTimes ? error : loadRetentionTimes(folder, &m_times);
}

Error LibraryPredictor::predictSpectra(const QList<LibraryPrecursors> &precursors, double energy, const Visitor &visit)
{
    const auto lengthAndCharges = [](const LibraryPrecursors &each) {
        return each.peptidoform.length() << 8 | each.charges;
    };
    return inBlocks(precursors, lengthAndCharges,
                    [&](const Indices &indices) { return predictBlock(precursors, indices, energy, visit); });
}

Error LibraryPredictor::predictBlock(const QList<LibraryPrecursors> &precursors, const Indices &indices, double energy,
                                     const Visitor &visit)
{
    const LibraryPrecursors &first = precursors[indices.constFirst()];
    QList<int> charges;
    for (int charge = 1; charge <= PeptidoformSpectrumPredictor::HIGHEST_CHARGE; ++charge) {
        if (first.isOf(charge))
            charges.append(charge);
    }
    QList<PeptidoformPrecursor> block;
    block.reserve(PEPTIDOFORMS_PER_RUN * charges.size());
    for (const Peptidoform &peptidoform : filledUp(precursors, indices)) {
        for (const int charge : std::as_const(charges))
            block.append({peptidoform, charge, energy});
    }
    QList<QList<FragmentPeak>> spectra;
    Error outcome = m_spectra.predict(block, &spectra);
    if (outcome.hasError())
        return outcome;
    keepRemarks(outcome);
    for (qsizetype place = 0; place < indices.size() * charges.size(); ++place)
        visit(indices[place / charges.size()], charges[place % charges.size()], spectra[place]);
    return {};
}

Error LibraryPredictor::predictTimes(const QList<LibraryPrecursors> &precursors, QList<QList<double>> *heads)
{
    heads->clear();
    heads->resize(precursors.size());
    const auto length = [](const LibraryPrecursors &each) { return each.peptidoform.length(); };
    return inBlocks(precursors, length, [&](const Indices &indices) {
        QList<QList<double>> found;
        Error outcome = m_times.predictHeads(filledUp(precursors, indices), &found);
        if (outcome.hasError())
            return outcome;
        keepRemarks(outcome);
        for (qsizetype place = 0; place < indices.size(); ++place)
            (*heads)[indices[place]] = std::move(found[place]);
        return Error();
    });
}

void LibraryPredictor::keepRemarks(const Error &outcome)
{
    for (const QString &remark : outcome.warnings()) {
        if (!m_remarks.contains(remark))
            m_remarks.append(remark);
    }
}

QStringList LibraryPredictor::takeRemarks()
{
    return std::exchange(m_remarks, {});
}

} // namespace zav
