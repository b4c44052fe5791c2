// SPDX-License-Identifier: Apache-2.0
#include "ObservedSpectrumFile.h"

#include "ByteStream.h"
#include "PrintableText.h"
#include "SpectrumFile.h"

#include <QtCore/QList>

#include <limits>

namespace zav {

namespace {

constexpr char SOURCE_FILE[] = "cli/src/readers/ObservedSpectrumFile";

constexpr char INDEX_PREFIX[] = "index=";

template <typename Predicate>
QList<int> spectraThat(const SpectrumFile &file, const Predicate &isWanted)
{
    QList<int> found;
    for (int i = 0; i < file.spectrumCount(); ++i) {
        if (isWanted(file.identity(i)))
            found.append(i);
    }
    return found;
}

bool hasScanNumbers(const SpectrumFile &file)
{
    return !spectraThat(file, [](const SpectrumIdentity &identity) { return identity.scanNumber >= 0; }).isEmpty();
}

QList<int> spectrumAt(const SpectrumFile &file, const QString &index)
{
    bool isNumber = false;
    const int number = index.toInt(&isNumber);
    return isNumber && number >= 0 && number < file.spectrumCount() ? QList<int>{number} : QList<int>{};
}

QList<int> spectraNamed(const SpectrumFile &file, const QString &scan)
{
    QList<int> byName = spectraThat(file, [&](const SpectrumIdentity &identity) { return identity.name == scan; });
    if (!byName.isEmpty())
        return byName;
    if (scan.startsWith(QLatin1String(INDEX_PREFIX)))
        return spectrumAt(file, scan.mid(static_cast<qsizetype>(sizeof(INDEX_PREFIX)) - 1));
    if (!hasScanNumbers(file))
        return spectrumAt(file, scan);
    bool isNumber = false;
    const int number = scan.toInt(&isNumber);
    return spectraThat(file,
                       [&](const SpectrumIdentity &identity) { return isNumber && identity.scanNumber == number; });
}

// What the user could have asked for instead.
QString describeSpectra(const SpectrumFile &file)
{
    int first = std::numeric_limits<int>::max();
    int last = -1;
    for (int i = 0; i < file.spectrumCount(); ++i) {
        if (const int scanNumber = file.identity(i).scanNumber; scanNumber >= 0) {
            first = std::min(first, scanNumber);
            last = std::max(last, scanNumber);
        }
    }
    const QString kind = last < 0 ? QStringLiteral("index") : QStringLiteral("scan");
    return QStringLiteral("it holds %1 %2, %3 %4 to %5")
        .arg(QString::number(file.spectrumCount()),
             file.spectrumCount() == 1 ? QStringLiteral("spectrum") : QStringLiteral("spectra"), kind,
             QString::number(last < 0 ? 0 : first), QString::number(last < 0 ? file.spectrumCount() - 1 : last));
}

Result<int> namedSpectrum(SpectrumFile *file, const QString &path, const QString &scan)
{
    const QString shown = displayText(scan);
    const QList<int> found = spectraNamed(*file, scan);
    if (found.isEmpty())
        return Error(InvalidInput,
                     QStringLiteral("%1: has no spectrum '%2': ").arg(path, shown) + describeSpectra(*file));
    if (found.size() > 1)
        return Error(InvalidInput, QStringLiteral("%1: '%2' names %3 spectra: give a native id or index=N")
                                       .arg(path, shown, QString::number(found.size())));
    const Result<int> level = file->msLevel(found.constFirst());
    if (level.hasError())
        return level.error();
    if (level.value() == 1)
        return Error(InvalidInput,
                     QStringLiteral("%1: spectrum '%2' is a survey spectrum (MS1), not MS/MS").arg(path, shown));
    return found.constFirst();
}

Result<int> onlySpectrum(SpectrumFile *file, const QString &path)
{
    QList<int> found;
    for (int i = 0; i < file->spectrumCount(); ++i) {
        const Result<int> level = file->msLevel(i);
        if (level.hasError())
            return level.error();
        if (level.value() == 2)
            found.append(i);
    }
    if (found.isEmpty())
        return Error(InvalidInput, path + QStringLiteral(": holds no MS2 spectrum"));
    if (found.size() > 1)
        return Error(InvalidInput, QStringLiteral("%1: holds %2 MS2 spectra: choose one with --scan")
                                       .arg(path, QString::number(found.size())));
    return found.constFirst();
}

Result<int> chooseSpectrum(SpectrumFile *file, const QString &path, const QString &scan)
{
    if (file->spectrumCount() == 0)
        return cannotRead(inputName(path), QStringLiteral("it holds no spectrum"));
    return scan.isEmpty() ? onlySpectrum(file, path) : namedSpectrum(file, path, scan);
}

template <typename T>
Error caughtAt(const Result<T> &result, const char *function, int line)
{
    Error error = result.error();
    return error.ecatch(function, SOURCE_FILE, line);
}

} // namespace

Result<ObservedSpectrum> readObservedSpectrum(const QString &path, const QString &scan)
{
    const Result<std::unique_ptr<SpectrumFile>> file = openSpectrumFile(path);
    if (file.hasError())
        return caughtAt(file, Q_FUNC_INFO, __LINE__);
    const Result<int> index = chooseSpectrum(file.value().get(), path, scan);
    if (index.hasError())
        return caughtAt(index, Q_FUNC_INFO, __LINE__);
    Result<ObservedSpectrum> spectrum = file.value()->spectrum(index.value());
    if (spectrum.hasError())
        return caughtAt(spectrum, Q_FUNC_INFO, __LINE__);
    return spectrum;
}

} // namespace zav
