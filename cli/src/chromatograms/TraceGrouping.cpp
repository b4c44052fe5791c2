// SPDX-License-Identifier: Apache-2.0
#include "TraceGrouping.h"

#include <algorithm>
#include <cmath>

namespace zav {

namespace {

constexpr double TARGET_TOLERANCE = 0.01; // m/z
constexpr double LEAST_OVERLAP = 0.5;     // of the longer of two ranges of time

// Files write targets with two to six decimals: 500.01 is 0.01 from 500.00 whatever the binary numbers are.
constexpr double ROUNDING = 1e-6;

Interval<double> timesOf(const QList<QPointF> &points)
{
    const auto [first, last] = std::minmax_element(points.begin(), points.end(),
                                                   [](const QPointF &a, const QPointF &b) { return a.x() < b.x(); });
    return {first->x(), last->x()};
}

bool overlapByHalf(const Interval<double> &a, const Interval<double> &b)
{
    const double shared = std::min(a.end, b.end) - std::max(a.start, b.start);
    const double longer = std::max(a.end - a.start, b.end - b.start);
    return shared >= 0 && shared >= LEAST_OVERLAP * longer;
}

bool isSameTarget(double a, double b)
{
    return std::abs(a - b) <= TARGET_TOLERANCE + ROUNDING;
}

// What has to be equal, apart from numbers that have to be close.
QString keyOf(const Chromatogram &trace)
{
    const QChar separator(u'\0');
    return trace.origin.peptide + separator + QChar(trace.origin.polarity) + separator + trace.timeUnit;
}

QString precursorName(const TraceOrigin &origin)
{
    const QString target = QString::number(origin.isolationTarget, 'g', 10);
    return (origin.peptide.isEmpty() ? QStringLiteral("m/z") : origin.peptide) + QLatin1Char(' ') + target;
}

} // namespace

void TraceGrouping::add(const Chromatogram &trace)
{
    const QString name = nameOf(trace);
    if (!name.isEmpty())
        addNamed(name, trace.timeUnit);
    else if (trace.origin.isolationTarget > 0 && !trace.points.isEmpty())
        addByPrecursor(trace);
    else
        addAlone(trace.id);
}

void TraceGrouping::addAlone(const QString &id)
{
    m_groups[begin(id, false)].members.append(m_count++);
}

QString TraceGrouping::nameOf(const Chromatogram &trace) const
{
    if (!trace.origin.group.isEmpty() || m_idPattern.pattern().isEmpty())
        return trace.origin.group;
    const QRegularExpressionMatch match = m_idPattern.match(trace.id);
    return match.captured(m_idPattern.captureCount() > 0 ? 1 : 0);
}

void TraceGrouping::addNamed(const QString &name, const QString &timeUnit)
{
    const QString key = name + QChar(u'\0') + timeUnit;
    const auto known = m_named.constFind(key);
    const qsizetype group = known == m_named.constEnd() ? begin(name, true) : *known;
    m_named.insert(key, group);
    m_groups[group].members.append(m_count++);
}

void TraceGrouping::addByPrecursor(const Chromatogram &trace)
{
    const QString key = keyOf(trace);
    const Interval<double> times = timesOf(trace.points);
    qsizetype group = partnersOf(trace, key, times);
    if (group < 0) {
        group = begin(precursorName(trace.origin), true);
        m_byPeptide[key].emplace(trace.origin.isolationTarget, group);
    }
    m_places[group].append({trace.origin.isolationTarget, times});
    m_groups[group].members.append(m_count++);
}

// The first group that the trace can join; -1 for none.
qsizetype TraceGrouping::partnersOf(const Chromatogram &trace, const QString &key, const Interval<double> &times) const
{
    const double target = trace.origin.isolationTarget;
    const auto goesWith = [&](const Place &member) {
        return isSameTarget(member.isolationTarget, target) && overlapByHalf(member.times, times);
    };
    const auto known = m_byPeptide.constFind(key);
    if (known == m_byPeptide.constEnd())
        return -1;
    qsizetype first = -1;
    const auto end = known->upper_bound(target + 2 * TARGET_TOLERANCE);
    for (auto candidate = known->lower_bound(target - 2 * TARGET_TOLERANCE); candidate != end; ++candidate) {
        const QList<Place> &members = *m_places.constFind(candidate->second);
        if ((first < 0 || candidate->second < first) && std::all_of(members.begin(), members.end(), goesWith))
            first = candidate->second;
    }
    return first;
}

// Names that would repeat get "#2", "#3" behind them.
qsizetype TraceGrouping::begin(const QString &name, bool isOfPrecursor)
{
    Group group{name, {}, isOfPrecursor};
    int number = m_names.value(name);
    while (m_names.contains(group.name))
        group.name = QStringLiteral("%1#%2").arg(name, QString::number(++number));
    m_names.insert(name, std::max(1, number));
    m_names.insert(group.name, std::max(1, m_names.value(group.name)));
    m_foundPrecursor = m_foundPrecursor || isOfPrecursor;
    m_groups.append(group);
    return m_groups.size() - 1;
}

} // namespace zav
