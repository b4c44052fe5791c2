// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ChromatogramSource.h"

#include <zav/Interval.h>

#include <QtCore/QHash>
#include <QtCore/QList>
#include <QtCore/QRegularExpression>
#include <QtCore/QString>

#include <map>

namespace zav {

/// Finds which traces of a file are of one precursor.
///
/// What puts a trace into a group, the first of these that there is:
///
/// 1. The group that the file names. Equal names are one group.
/// 2. The first capture of a pattern in the trace's id, or the whole match of a pattern without captures. Equal texts
///    are one group.
/// 3. The precursor's isolation target: within 0.01 m/z of that of every other member, with the same peptide and the
///    same polarity. The times of any two members overlap by half of the longer or more.
///
/// A trace with none of them, or without partners, is a group of its own. So is one without points, unless 1 or 2
/// applies. All members have the same unit of time.
class TraceGrouping
{
public:
    /// Traces of one group.
    struct Group
    {
        QString name;              ///< unlike that of any other group of the file
        QList<qsizetype> members;  ///< numbers of the traces, from 0, ascending
        bool isOfPrecursor = true; ///< something tells the precursor; otherwise the name is the trace's id
    };

    /// `idPattern` valid, or empty for none.
    explicit TraceGrouping(const QRegularExpression &idPattern = {}) : m_idPattern(idPattern) {}

    /// Sorts in the next trace of the file.
    void add(const Chromatogram &trace);

    /// Leaves out the next trace of the file, for example a broken one: it is a group of its own.
    void addAlone(const QString &id);

    /// In the order of their first members.
    const QList<Group> &groups() const { return m_groups; }

    /// Whether anything told a precursor for any trace.
    bool foundPrecursor() const { return m_foundPrecursor; }

private:
    QString nameOf(const Chromatogram &trace) const;
    void addNamed(const QString &name, const QString &timeUnit);
    void addByPrecursor(const Chromatogram &trace);
    qsizetype partnersOf(const Chromatogram &trace, const QString &key, const Interval<double> &times) const;
    qsizetype begin(const QString &name, bool isOfPrecursor);

    /// What tells whether a trace goes with another.
    struct Place
    {
        double isolationTarget = 0;
        Interval<double> times;
    };

    QRegularExpression m_idPattern;
    QList<Group> m_groups;
    QHash<QString, int> m_names;                                  ///< that groups have, and the last number behind each
    QHash<QString, qsizetype> m_named;                            ///< groups by name and unit
    QHash<QString, std::multimap<double, qsizetype>> m_byPeptide; ///< groups by their first isolation target
    QHash<qsizetype, QList<Place>> m_places;                      ///< of the members of these groups
    qsizetype m_count = 0;
    bool m_foundPrecursor = false;
};

} // namespace zav
