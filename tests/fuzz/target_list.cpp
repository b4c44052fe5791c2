// SPDX-License-Identifier: Apache-2.0
//
// Door: a list of what to extract.
// Promises: targets have an id of their own, an m/z, a window and a range of time that can be looked for; plain and
// gzipped content read the same; what is read and written reads the same.
#include "FuzzSupport.h"
#include "TargetList.h"

#include <QtCore/QSet>

#include <cmath>

namespace zav::fuzz {
namespace {

constexpr char NAME[] = "input.tsv";
constexpr double DEFAULT_PPM = 10.0;

QByteArray bitsOf(const ExtractionTarget &target)
{
    return bits(target.id, target.mz, target.ppm, target.rtFrom, target.rtTo, target.group);
}

Reading read(const QString &path)
{
    const Result<QList<ExtractionTarget>> targets = readTargetList(path, DEFAULT_PPM, true);
    Reading reading{{}, targets.error().message()};
    require(targets.hasError() == !reading.error.isEmpty(), "a failure says why");
    if (targets.hasError())
        return reading;
    QSet<QString> ids;
    for (const ExtractionTarget &target : targets.value()) {
        require(!target.id.isEmpty() && !ids.contains(target.id), "every target has an id of its own");
        require(target.mz > 0 && std::isfinite(target.mz) && target.ppm > 0 && target.rtFrom <= target.rtTo,
                "a target can be looked for");
        ids.insert(target.id);
        reading.parts.append(bitsOf(target));
    }
    require(!targets.value().isEmpty(), "a list holds a target");
    return reading;
}

QByteArray cell(double value)
{
    return std::isfinite(value) ? numberText(value) : QByteArray();
}

} // namespace

void tryInput(const QByteArray &input)
{
    const Reading reading = readBothWays(NAME, input, read);
    if (!reading.error.isEmpty())
        return;
    QByteArray table = "mz\tid\tppm\trt_from\trt_to\tgroup\n";
    const Result<QList<ExtractionTarget>> targets = readTargetList(fileWith(NAME, input), DEFAULT_PPM, true);
    for (const ExtractionTarget &target : targets.value())
        table += cell(target.mz) + '\t' + target.id.toUtf8() + '\t' + cell(target.ppm) + '\t' + cell(target.rtFrom) +
                 '\t' + cell(target.rtTo) + '\t' + target.group.toUtf8() + '\n';
    require(read(fileWith(NAME, table)) == reading, "written targets read the same");
}

} // namespace zav::fuzz
