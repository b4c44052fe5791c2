// SPDX-License-Identifier: Apache-2.0
#include "XicPeakWalk.h"

#include "ListMemory.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>
#include <numeric>
#include <vector>

namespace zav {

namespace {

constexpr double ZERO_HEIGHT = 1e-12;

/// Where a walk ends, told from a value of the vector. No comparison with NaN holds, so NaN ends none.
struct WalkEnd
{
    float apex = 1.0F;
    double threshold = 0.0;

    bool isAt(float value) const
    {
        const float relativeHeight = value / apex;
        return threshold >= relativeHeight || relativeHeight > 1.0F;
    }
};

/// Looks at one index after the other: the fastest way on short walks.
class PlainSearch
{
public:
    explicit PlainSearch(const Eigen::VectorXf &values) : m_values(values) {}

    /// The last index up to `from` at which a walk ends, or -1.
    Eigen::Index before(Eigen::Index from, const WalkEnd &end) const
    {
        while (from >= 0 && !end.isAt(m_values[from]))
            --from;
        return from;
    }

    /// The first index from `from` on at which a walk ends, or the size.
    Eigen::Index after(Eigen::Index from, const WalkEnd &end) const
    {
        while (from < m_values.size() && !end.isAt(m_values[from]))
            ++from;
        return from;
    }

private:
    const Eigen::VectorXf &m_values;
};

/// The lowest and the highest number of a block of values; NaN both where it holds no number.
struct Extremes
{
    float lowest = NAN;
    float highest = NAN;

    void include(float value)
    {
        if (value < lowest || std::isnan(lowest))
            lowest = value;
        if (value > highest || std::isnan(highest))
            highest = value;
    }
};

/// Finds the same indices as `PlainSearch`, passing over blocks of 16, 256, 4,096 ... values whose extremes do not end
/// the walk.
///
/// Division by a finite apex is monotone, rounding included: it keeps the order of the values, or turns it round where
/// the apex is negative. The values at which a walk goes on therefore lie between two limits, and a block whose lowest
/// and highest number do so holds no end. An infinite apex makes NaN of an infinite value: it is no apex for this.
class BlockSearch
{
public:
    explicit BlockSearch(const Eigen::VectorXf &values) : m_values(values)
    {
        for (Eigen::Index count = values.size(); count > BLOCK;) {
            std::vector<Extremes> level(static_cast<std::size_t>((count + BLOCK - 1) / BLOCK));
            for (Eigen::Index i = 0; i < count; ++i) {
                const Extremes part = at(levelCount(), i);
                Extremes &block = level[static_cast<std::size_t>(i / BLOCK)];
                block.include(part.lowest);
                block.include(part.highest);
            }
            count = static_cast<Eigen::Index>(level.size());
            m_levels.push_back(std::move(level));
        }
    }

    Eigen::Index before(Eigen::Index from, const WalkEnd &end) const { return find<-1>(from, end); }
    Eigen::Index after(Eigen::Index from, const WalkEnd &end) const { return find<1>(from, end); }

private:
    static constexpr Eigen::Index BLOCK = 16;

    int levelCount() const { return static_cast<int>(m_levels.size()); }

    /// Level 0 are the values themselves.
    Eigen::Index sizeOf(int level) const
    {
        return level == 0 ? m_values.size() : static_cast<Eigen::Index>(m_levels[level - 1].size());
    }

    Extremes at(int level, Eigen::Index i) const
    {
        return level == 0 ? Extremes{m_values[i], m_values[i]} : m_levels[level - 1][static_cast<std::size_t>(i)];
    }

    bool holdsEnd(int level, Eigen::Index i, const WalkEnd &end) const
    {
        const Extremes extremes = at(level, i);
        return end.isAt(extremes.lowest) || end.isAt(extremes.highest);
    }

    template <int STEP>
    Eigen::Index find(Eigen::Index i, const WalkEnd &end) const
    {
        constexpr Eigen::Index ENTRY = STEP > 0 ? 0 : BLOCK - 1; // of a block, on the way
        int level = 0;
        while (i >= 0 && i < sizeOf(level)) {
            if (i % BLOCK == ENTRY && level < levelCount()) {
                i /= BLOCK;
                ++level;
            } else if (holdsEnd(level, i, end)) {
                return firstWithin<STEP>(level, i, end);
            } else {
                i += STEP;
            }
        }
        return i < 0 ? -1 : m_values.size();
    }

    /// The first end on the way through a block that holds one.
    template <int STEP>
    Eigen::Index firstWithin(int level, Eigen::Index i, const WalkEnd &end) const
    {
        for (; level > 0; --level) {
            i = STEP > 0 ? i * BLOCK : std::min(i * BLOCK + BLOCK, sizeOf(level - 1)) - 1;
            while (!holdsEnd(level - 1, i, end))
                i += STEP;
        }
        return i;
    }

    const Eigen::VectorXf &m_values;
    std::vector<std::vector<Extremes>> m_levels;
};

template <typename Search>
Interval<int> walk(const Search &search, Eigen::Index size, const LocalMaximum &maximum, double threshold)
{
    if (std::abs(maximum.value) <= ZERO_HEIGHT || size <= 1)
        return {0, 0};
    const WalkEnd end{static_cast<float>(maximum.value), threshold};
    const Eigen::Index left = search.before(maximum.index - 1, end);
    const Eigen::Index right = search.after(maximum.index + 1, end);
    return {static_cast<int>(std::max<Eigen::Index>(left, 0)), static_cast<int>(right < size - 1 ? right : size - 3)};
}

/// Walks plainly as long as that is linear in all: above zero, no value lies on the way of more than two maxima. Below
/// zero it can lie on the way of all of them; then the blocks are built and searched.
class Walker
{
public:
    Walker(const Eigen::VectorXf &input, Eigen::Index plainVisits)
        : m_input(input), m_mostPlainSteps(plainVisits * input.size())
    {}

    Interval<int> walk(const LocalMaximum &maximum, double threshold)
    {
        if (m_plainSteps >= m_mostPlainSteps && std::isfinite(static_cast<float>(maximum.value))) {
            if (!m_blocks)
                m_blocks = std::make_unique<BlockSearch>(m_input);
            return zav::walk(*m_blocks, m_input.size(), maximum, threshold);
        }
        const Interval<int> limits = zav::walk(PlainSearch(m_input), m_input.size(), maximum, threshold);
        m_plainSteps += limits.end - limits.start;
        return limits;
    }

private:
    const Eigen::VectorXf &m_input;
    Eigen::Index m_mostPlainSteps;
    Eigen::Index m_plainSteps = 0;
    std::unique_ptr<BlockSearch> m_blocks;
};

/// The maxima that no interval covers yet. A chain of covered ones is shortened whenever it is followed, so that
/// finding the next one costs next to nothing.
class UncoveredMaxima
{
public:
    /// The maxima stand in ascending order of index.
    explicit UncoveredMaxima(QList<LocalMaximum> *maxima) : m_maxima(*maxima), m_next(maxima->size() + 1)
    {
        std::iota(m_next.begin(), m_next.end(), std::size_t(0));
    }

    void cover(const Interval<int> &interval)
    {
        const auto first = std::lower_bound(m_maxima.begin(), m_maxima.end(), interval.start,
                                            [](const LocalMaximum &m, int index) { return m.index < index; });
        for (std::size_t i = next(first - m_maxima.begin()); i + 1 < m_next.size(); i = next(i + 1)) {
            if (m_maxima[static_cast<qsizetype>(i)].index > interval.end)
                return;
            coverOne(i);
        }
    }

    void coverOne(std::size_t i)
    {
        m_maxima[static_cast<qsizetype>(i)].consumed = true;
        m_next[i] = i + 1;
    }

private:
    std::size_t next(std::size_t i)
    {
        while (m_next[i] != i) {
            m_next[i] = m_next[m_next[i]];
            i = m_next[i];
        }
        return i;
    }

    QList<LocalMaximum> &m_maxima;
    std::vector<std::size_t> m_next; // itself while uncovered, else a later one
};

std::vector<qsizetype> highestFirst(const QList<LocalMaximum> &maxima)
{
    std::vector<qsizetype> order(maxima.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(),
                     [&](qsizetype a, qsizetype b) { return maxima[a].value > maxima[b].value; });
    return order;
}

} // namespace

QList<LocalMaximum> findLocalMaxima(const Eigen::VectorXf &input, int scale)
{
    // Truncated in float: a conversion to int would overflow on the heights that a hostile trace can reach.
    const auto truncated = [&](Eigen::Index i) { return std::trunc(input[i] * static_cast<float>(scale)); };
    QList<LocalMaximum> maxima;
    if (input.size() < 3)
        return maxima;
    float before = truncated(0);
    float height = truncated(1);
    for (Eigen::Index i = 1; i + 1 < input.size(); ++i) {
        const float after = truncated(i + 1);
        if (height > before && height >= after)
            maxima.append({-1, static_cast<int>(i), input[i], false});
        before = height;
        height = after;
    }
    return maxima;
}

Interval<int> walkPeakLimits(const Eigen::VectorXf &input, const LocalMaximum &maximum, double threshold)
{
    return walk(PlainSearch(input), input.size(), maximum, threshold);
}

QList<Interval<int>> walkAllPeakLimits(const Eigen::VectorXf &input, QList<LocalMaximum> maxima, double threshold,
                                       int plainVisits)
{
    makeOwner(&maxima);
    QList<Interval<int>> intervals;
    Walker walker(input, plainVisits);
    UncoveredMaxima uncovered(&maxima);
    for (const qsizetype i : highestFirst(maxima)) {
        if (maxima[i].consumed)
            continue;
        intervals.append(walker.walk(maxima.at(i), threshold));
        uncovered.coverOne(static_cast<std::size_t>(i));
        uncovered.cover(intervals.last());
    }
    return intervals;
}

} // namespace zav
