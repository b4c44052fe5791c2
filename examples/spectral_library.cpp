// SPDX-License-Identifier: Apache-2.0
//
// Predicts many peptides of one charge in one call and names each fragment, as a spectral library does:
// spectral_library MODELS CHARGE PEPTIDE...
#include <zav/MsMsFragmentationPredictomatic.h>

#include <QtCore/QTextStream>

namespace {

QString ionName(const zav::FragmentPeak &peak)
{
    return peak.ionType + QString::number(peak.ionNumber) + peak.neutralLoss + QString(peak.charge, '+');
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc < 4)
        return 2;
    const QString network = QString::fromLocal8Bit(argv[1]) + "/msms_charge%1.pb";
    const int charge = QString(argv[2]).toInt();
    QStringList peptides;
    for (int i = 3; i < argc; ++i)
        peptides.append(QString::fromLocal8Bit(argv[i]));

    zav::MsMsFragmentationPredictomatic predictor;
    zav::Error error = predictor.init(network.arg(1), network.arg(2), network.arg(3), network.arg(4), network.arg(5));
    QList<QList<zav::FragmentPeak>> library;
    if (!error.hasError())
        error = predictor.predictFragments(peptides, charge, &library);

    QTextStream out(stdout);
    for (qsizetype i = 0; i < library.size(); ++i)
        for (const zav::FragmentPeak &peak : library.at(i))
            out << peptides.at(i) << '\t' << ionName(peak) << '\t' << QString::number(peak.mz, 'f', 5) << '\t'
                << QString::number(peak.intensity, 'f', 4) << '\n';
    if (error.hasError() || !error.warnings().isEmpty())
        QTextStream(stderr) << error.toString() << '\n';
    return error.hasError() ? 1 : 0;
}
