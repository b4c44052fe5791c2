// SPDX-License-Identifier: Apache-2.0
//
// Reads a chromatogram from standard input, one point (time, intensity) per line, and prints where each of its peaks
// starts and ends: peak_limits MODELS < chromatogram.tsv
#include <zav/XicBaselineLimitsDetector.h>

#include <QtCore/QTextStream>

namespace {

QList<QPointF> readPoints()
{
    QList<QPointF> points;
    QTextStream in(stdin);
    double time = 0.0;
    double intensity = 0.0;
    while (in >> time >> intensity, in.status() == QTextStream::Ok)
        points.append({time, intensity});
    return points;
}

int fail(const zav::Error &error)
{
    QTextStream(stderr) << error.toString() << '\n';
    return 1;
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc != 2)
        return 2;
    zav::XicBaselineLimitsDetectorOptions options; // the defaults fit the shipped network
    options.modelFilePath = QString::fromLocal8Bit(argv[1]) + "/xic_limits.pb";

    zav::XicBaselineLimitsDetector detector;
    const zav::Error error = detector.init(options);
    if (error.hasError())
        return fail(error);
    const zav::Result<QList<zav::Interval<double>>> peaks = detector.integrateXIC(readPoints(), -1.0, 0);
    if (peaks.hasError())
        return fail(peaks.error());

    for (const zav::Interval<double> &peak : peaks.value())
        QTextStream(stdout) << peak.start << '\t' << peak.end << '\n';
    return 0;
}
