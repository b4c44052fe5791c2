// SPDX-License-Identifier: Apache-2.0
#include "LibraryPredictor.h"

#include "Messages.h"
#include "NetworkLoading.h"

#include <QtCore/QMap>

#include <algorithm>
#include <bit>
#include <limits>
#include <utility>

namespace zav {

namespace {

using Indices = QList<qsizetype>;

constexpr qsizetype SMALL_BLOCK = 32;
constexpr qsizetype LARGE_BLOCK = 128;     // beyond it, what the network computes no longer stays near the processor
constexpr qsizetype MOST_PRECURSORS = 256; // the predictor divides longer lists

/// Groups the peptidoforms by length and hands them over in blocks, the shortest first: large ones as long as there are
/// enough, then small ones. Those without a precursor, which may be of any length, are left out.
template <typename Predict>
Error inBlocks(const QList<LibraryPrecursors> &precursors, qsizetype largeBlock, const Predict &predict)
{
    QMap<int, Indices> groups;
    for (qsizetype i = 0; i < precursors.size(); ++i) {
        if (precursors[i].charges != 0)
            groups[precursors[i].peptidoform.length()].append(i);
    }
    for (const Indices &group : std::as_const(groups)) {
        for (qsizetype first = 0; first < group.size();) {
            const qsizetype size = group.size() - first < largeBlock ? SMALL_BLOCK : largeBlock;
            Error error = predict(group.mid(first, size), size);
            if (error.hasError())
                return error;
            first += size;
        }
    }
    return {};
}

/// Peptidoforms to fill up a block that ends with `last`: two in turn, because equal neighbours share their place.
QList<Peptidoform> fillers(const Peptidoform &last, qsizetype count)
{
    const int length = last.length();
    std::pair<Peptidoform, Peptidoform> turns{Peptidoform(QString(length, u'A')), Peptidoform(QString(length, u'G'))};
    if (last == turns.first)
        std::swap(turns.first, turns.second);
    QList<Peptidoform> fillers;
    for (qsizetype i = 0; i < count; ++i)
        fillers.append(i % 2 == 0 ? turns.first : turns.second);
    return fillers;
}

/// The peptidoforms of a block, filled up to its size.
QList<Peptidoform> peptidoformsOf(const QList<LibraryPrecursors> &precursors, const Indices &indices, qsizetype size)
{
    QList<Peptidoform> block;
    block.reserve(size);
    for (const qsizetype index : indices)
        block.append(precursors[index].peptidoform);
    block.append(fillers(block.constLast(), size - block.size()));
    return block;
}

/// The largest number of charges that a peptidoform has.
int mostCharges(const QList<LibraryPrecursors> &precursors)
{
    int most = 1;
    for (const LibraryPrecursors &each : precursors)
        most = std::max(most, std::popcount(each.charges));
    return most;
}

} // namespace

Error LibraryPredictor::load(const ModelFolder &folder, bool withTimes)
{
    Error error = loadNetwork(folder, NetworkUse::Peptidoforms, &m_spectra);
    return error.hasError() || !withTimes ? error : loadNetwork(folder, NetworkUse::RetentionTimes, &m_times);
}

Error LibraryPredictor::predictSpectra(const QList<LibraryPrecursors> &precursors, double energy, const Visitor &visit)
{
    const int charges = mostCharges(precursors);
    const qsizetype largeBlock = std::min(LARGE_BLOCK, MOST_PRECURSORS / charges / SMALL_BLOCK * SMALL_BLOCK);
    return inBlocks(precursors, largeBlock, [&](const Indices &indices, qsizetype size) {
        return predictBlock(precursors, indices, {size, size * charges}, energy, visit);
    });
}

Error LibraryPredictor::predictBlock(const QList<LibraryPrecursors> &precursors, const Indices &indices,
                                     const BlockSize &size, double energy, const Visitor &visit)
{
    QList<PeptidoformPrecursor> block;
    block.reserve(size.precursors);
    Indices owners;
    for (const qsizetype index : indices) {
        for (int charge = 1; charge <= PeptidoformSpectrumPredictor::HIGHEST_CHARGE; ++charge) {
            if (!precursors[index].isOf(charge))
                continue;
            block.append({precursors[index].peptidoform, charge, energy});
            owners.append(index);
        }
    }
    for (const Peptidoform &filler : fillers(block.constLast().peptidoform, size.peptidoforms - indices.size()))
        block.append({filler, 1, energy});
    block.resize(size.precursors, PeptidoformPrecursor(block.constLast()));
    QList<QList<FragmentPeak>> spectra;
    Error outcome = m_spectra.predict(block, &spectra);
    throwIfOutOfMemory(outcome);
    if (outcome.hasError())
        return outcome;
    keepRemarks(outcome);
    for (qsizetype place = 0; place < owners.size(); ++place)
        visit(owners[place], block[place].charge, spectra[place]);
    return {};
}

Error LibraryPredictor::predictTimes(const QList<LibraryPrecursors> &precursors, QList<double> *times)
{
    times->fill(std::numeric_limits<double>::quiet_NaN(), precursors.size());
    return predictWith(&RetentionTimePredictor::predict, precursors, times);
}

Error LibraryPredictor::predictHeads(const QList<LibraryPrecursors> &precursors, QList<QList<double>> *heads)
{
    heads->fill({}, precursors.size());
    return predictWith(&RetentionTimePredictor::predictHeads, precursors, heads);
}

template <typename Value>
Error LibraryPredictor::predictWith(Error (RetentionTimePredictor::*predict)(const QList<Peptidoform> &,
                                                                             QList<Value> *),
                                    const QList<LibraryPrecursors> &precursors, QList<Value> *values)
{
    return inBlocks(precursors, LARGE_BLOCK, [&](const Indices &indices, qsizetype size) {
        QList<Value> found;
        Error outcome = (m_times.*predict)(peptidoformsOf(precursors, indices, size), &found);
        throwIfOutOfMemory(outcome);
        if (outcome.hasError())
            return outcome;
        keepRemarks(outcome);
        for (qsizetype place = 0; place < indices.size(); ++place)
            (*values)[indices[place]] = std::move(found[place]);
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
