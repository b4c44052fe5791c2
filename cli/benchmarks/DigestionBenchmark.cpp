// SPDX-License-Identifier: Apache-2.0
//
// Digests a FASTA file and prints what came of it, the time and the memory:
//
//     digestion_benchmark PROTEINS.fasta [none|reversed|shuffled] [memory|disk] [trypsin] [specific|semi]
#include "PeptideDigest.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QStringList>

#include <cstdio>

namespace {

using namespace zav;

PeptideRequest requestOf(const QStringList &arguments)
{
    PeptideRequest request;
    const QString decoys = arguments.value(2, QStringLiteral("none"));
    if (decoys != QLatin1String("none"))
        request.decoys.kind = decoys == QLatin1String("reversed") ? DecoyKind::Reversed : DecoyKind::Shuffled;
    request.space.onDisk = arguments.value(3) == QLatin1String("disk");
    request.digestion.enzyme = arguments.value(4, QStringLiteral("trypsin"));
    request.digestion.semiSpecific = arguments.value(5) == QLatin1String("semi");
    return request;
}

// Linux's own account: what is resident, at its highest (VmHWM) and now (VmRSS).
void printMemory()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return;
    const QList<QByteArray> lines = status.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith("VmHWM") || line.startsWith("VmRSS"))
            std::printf("%s\n", line.constData());
    }
}

double secondsToReadAll(PeptideSet &source)
{
    QElapsedTimer timer;
    timer.start();
    PeptideBlock block;
    constexpr qint64 STEP = 1000;
    for (qint64 first = 0; first < source.count(); first += STEP) {
        if (source.read(first, qMin(first + STEP, source.count()), &block).hasError())
            return -1;
    }
    return double(timer.nsecsElapsed()) * 1e-9;
}

} // namespace

int main(int count, char **words)
{
    QStringList arguments;
    for (int i = 0; i < count; ++i)
        arguments.append(QString::fromLocal8Bit(words[i]));
    printMemory();
    QElapsedTimer timer;
    timer.start();
    const Result<DigestedPeptides> result = digestFasta(arguments.value(1), requestOf(arguments));
    const double seconds = double(timer.nsecsElapsed()) * 1e-9;
    if (result.hasError()) {
        std::fprintf(stderr, "%s\n", qUtf8Printable(result.error().message()));
        return 1;
    }
    const DigestionCounts &counts = result.value().counts;
    std::printf("%lld proteins, %lld targets, %lld decoys, %lld skipped, %lld + %lld + %lld without a decoy\n",
                counts.proteins, counts.targets, counts.decoys, counts.skipped, counts.decoysEqualToTarget,
                counts.decoysTooSimilar, counts.decoysShared);
    printMemory();
    std::printf("digestion %.2f s, reading all %.2f s\n", seconds, secondsToReadAll(*result.value().peptides));
    return 0;
}
