// SPDX-License-Identifier: Apache-2.0
#include "BenchmarkSetting.h"

#include "TfApi.h"

#include <QtCore/QThread>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <random>
#include <string>

namespace zav::benchmarkSetting {

namespace {

std::string processorName()
{
    std::ifstream info("/proc/cpuinfo");
    for (std::string line; std::getline(info, line);) {
        if (line.rfind("model name", 0) == 0)
            return line.substr(line.find(':') + 2);
    }
    return "unknown processor";
}

QString networkPath(const QString &folder, int charge)
{
    return QStringLiteral("%1/msms_charge%2.pb").arg(folder, QString::number(charge));
}

} // namespace

Moment Moment::now()
{
    const auto wall = std::chrono::steady_clock::now().time_since_epoch();
    return {std::chrono::duration<double>(wall).count(), static_cast<double>(std::clock()) / CLOCKS_PER_SEC};
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

void printSetting(const QString &subject)
{
    TfApi api;
    api.load();
    require(api.checkComplete().code() == NoError, "The TensorFlow runtime was not found");
    std::printf("%s\n%s, %d core(s) in use; TensorFlow %s, Qt %s\n", qUtf8Printable(subject), processorName().c_str(),
                QThread::idealThreadCount(), api.TF_Version(), qVersion());
}

QString modelFolder(int argumentCount, char **arguments)
{
    return QString::fromLocal8Bit(argumentCount > 1 ? arguments[1] : ZAV_MODELS_DIR);
}

void loadAll(MsMsFragmentationPredictomatic *predictor, const QString &folder)
{
    const Error error = predictor->init(networkPath(folder, 1), networkPath(folder, 2), networkPath(folder, 3),
                                        networkPath(folder, 4), networkPath(folder, 5));
    require(!error.hasError(), "The networks could not be loaded");
}

void require(bool condition, const char *failure)
{
    if (condition)
        return;
    std::fprintf(stderr, "%s: nothing more is timed\n", failure);
    std::exit(EXIT_FAILURE);
}

QStringList peptides(int count)
{
    constexpr char RESIDUES[] = "ACDEFGHIKLMNPQRSTVWY";
    std::mt19937 generator(1);
    QStringList result;
    for (int i = 0; i < count; ++i) {
        const auto length = 7 + std::min(generator() % 19, generator() % 19);
        QString peptide;
        for (unsigned j = 0; j < length; ++j)
            peptide.append(QLatin1Char(RESIDUES[generator() % 20]));
        result.append(peptide);
    }
    return result;
}

} // namespace zav::benchmarkSetting
