// SPDX-License-Identifier: Apache-2.0
//
// Predicts one spectrum and prints it, one peak per line: predict_spectrum MODELS LQSRPAAPPAPGPGQLTLR 3
#include <zav/MsMsFragmentationPredictomatic.h>

#include <QtCore/QTextStream>

int main(int argc, char *argv[])
{
    if (argc != 4)
        return 2;
    const QString network = QString::fromLocal8Bit(argv[1]) + "/msms_charge%1.pb";

    zav::MsMsFragmentationPredictomatic predictor;
    zav::Error error = predictor.init(network.arg(1), network.arg(2), network.arg(3), network.arg(4), network.arg(5));
    QList<QPointF> spectrum;
    if (!error.hasError())
        error = predictor.predictMsMsFragmentation(argv[2], QString(argv[3]).toInt(), &spectrum);

    for (const QPointF &peak : spectrum) // x: m/z, y: intensity
        QTextStream(stdout) << QString::number(peak.x(), 'f', 5) << '\t' << QString::number(peak.y(), 'f', 4) << '\n';
    if (error.hasError())
        QTextStream(stderr) << error.toString() << '\n';
    return error.hasError() ? 1 : 0;
}
