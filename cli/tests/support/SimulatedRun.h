// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MzMlText.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QPointF>

namespace zav {

/// A run as an mzML document, built up trace by trace or spectrum by spectrum. Times are in minutes.
class SimulatedRun
{
public:
    /// A stored chromatogram; x of the points is the time.
    SimulatedRun &addChromatogram(const QByteArray &id, const QList<QPointF> &points)
    {
        m_chromatograms.append(element("chromatogram", m_chromatograms.size(), id, points.size()) +
                               arrays("MS:1000595", "time array", "UO:0000031", points) + "</chromatogram>\n");
        return *this;
    }

    /// An MS1 spectrum; x of the peaks is m/z.
    SimulatedRun &addSpectrum(double minutes, const QList<QPointF> &peaks)
    {
        const QByteArray id = "scan=" + QByteArray::number(m_spectra.size() + 1);
        m_spectra.append(
            element("spectrum", m_spectra.size(), id, peaks.size()) + parameter("MS:1000511", "ms level", "1") +
            parameter("MS:1000579", "MS1 spectrum", {}) + "<scanList count=\"1\"><scan>" +
            parameter("MS:1000016", "scan start time", QByteArray::number(minutes, 'g', 17),
                      " unitCvRef=\"UO\" unitAccession=\"UO:0000031\" unitName=\"minute\"") +
            "</scan></scanList>" + arrays("MS:1000514", "m/z array", "MS:1000040", peaks) + "</spectrum>\n");
        return *this;
    }

    QByteArray document() const
    {
        return mzMlDocument(list("spectrumList", m_spectra) + list("chromatogramList", m_chromatograms));
    }

private:
    static QByteArray element(const QByteArray &name, qsizetype index, const QByteArray &id, qsizetype length)
    {
        return '<' + name + " index=\"" + QByteArray::number(index) + "\" id=\"" + id + "\" defaultArrayLength=\"" +
               QByteArray::number(length) + "\">";
    }

    static QByteArray parameter(const QByteArray &accession, const QByteArray &name, const QByteArray &value,
                                const QByteArray &unit = {})
    {
        return "<cvParam cvRef=\"MS\" accession=\"" + accession + "\" name=\"" + name + "\" value=\"" + value + '"' +
               unit + "/>";
    }

    static QByteArray arrays(const QByteArray &accession, const QByteArray &name, const QByteArray &unit,
                             const QList<QPointF> &points)
    {
        QList<double> x;
        QList<double> y;
        for (const QPointF &point : points) {
            x.append(point.x());
            y.append(point.y());
        }
        return "<binaryDataArrayList count=\"2\">" + dataArray(accession, name, x, {}, unit) +
               dataArray("MS:1000515", "intensity array", y, {}, "MS:1000131") + "</binaryDataArrayList>";
    }

    static QByteArray list(const QByteArray &name, const QList<QByteArray> &elements)
    {
        if (elements.isEmpty())
            return {};
        return '<' + name + " count=\"" + QByteArray::number(elements.size()) + "\">\n" + elements.join(QByteArray()) +
               "</" + name + '>';
    }

    QList<QByteArray> m_chromatograms;
    QList<QByteArray> m_spectra;
};

} // namespace zav
