// SPDX-License-Identifier: Apache-2.0
#include "ObservedSpectrumFile.h"

#include "ByteStream.h"
#include "PrintableText.h"

#include <QtCore/QHash>
#include <QtCore/QList>

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

namespace zav {

namespace {

constexpr char SOURCE_FILE[] = "cli/src/readers/ObservedSpectrumFile";

constexpr char INDEX_PREFIX[] = "index=";

/// The spectra that some scans may name, found by looking through a file's spectra once.
class NamedSpectra
{
public:
    NamedSpectra(const SpectrumFile &file, const QStringList &scans) : m_count(file.spectrumCount())
    {
        for (const QString &scan : scans) {
            m_byName.insert(scan, {});
            bool isNumber = false;
            if (const int number = scan.toInt(&isNumber); isNumber)
                m_byNumber.insert(number, {});
        }
        for (int i = 0; i < m_count; ++i)
            look(i, file.identity(i));
    }

    QList<int> spectraNamed(const QString &scan) const
    {
        QList<int> byName = m_byName.value(scan);
        if (!byName.isEmpty())
            return byName;
        if (scan.startsWith(QLatin1String(INDEX_PREFIX)))
            return spectrumAt(scan.mid(static_cast<qsizetype>(sizeof(INDEX_PREFIX)) - 1));
        if (!hasScanNumbers())
            return spectrumAt(scan);
        bool isNumber = false;
        const int number = scan.toInt(&isNumber);
        return isNumber && number >= 0 ? m_byNumber.value(number) : QList<int>();
    }

    /// What the user could have asked for instead.
    QString description() const
    {
        const QString kind = hasScanNumbers() ? QStringLiteral("scan") : QStringLiteral("index");
        return QStringLiteral("it holds %1 %2, %3 %4 to %5")
            .arg(QString::number(m_count), m_count == 1 ? QStringLiteral("spectrum") : QStringLiteral("spectra"), kind,
                 QString::number(hasScanNumbers() ? m_firstNumber : 0),
                 QString::number(hasScanNumbers() ? m_lastNumber : m_count - 1));
    }

private:
    void look(int index, const SpectrumIdentity &identity)
    {
        if (const auto named = m_byName.find(identity.name); named != m_byName.end())
            named->append(index);
        if (identity.scanNumber < 0)
            return;
        m_firstNumber = std::min(m_firstNumber, identity.scanNumber);
        m_lastNumber = std::max(m_lastNumber, identity.scanNumber);
        if (const auto numbered = m_byNumber.find(identity.scanNumber); numbered != m_byNumber.end())
            numbered->append(index);
    }

    bool hasScanNumbers() const { return m_lastNumber >= 0; }

    QList<int> spectrumAt(const QString &index) const
    {
        bool isNumber = false;
        const int number = index.toInt(&isNumber);
        return isNumber && number >= 0 && number < m_count ? QList<int>{number} : QList<int>{};
    }

    int m_count;
    int m_firstNumber = std::numeric_limits<int>::max();
    int m_lastNumber = -1;
    QHash<QString, QList<int>> m_byName;
    QHash<int, QList<int>> m_byNumber;
};

Result<int> namedSpectrum(SpectrumFile *file, const NamedSpectra &names, const QString &path, const QString &scan)
{
    const QString shown = displayText(scan);
    const QList<int> found = names.spectraNamed(scan);
    if (found.isEmpty())
        return Error(InvalidInput, QStringLiteral("%1: has no spectrum '%2': ").arg(path, shown) + names.description());
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

Result<int> onlySpectrum(SpectrumFile *file, const QString &path, SpectraToRead wanted)
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
        return Error(InvalidInput, QStringLiteral("%1: holds %2 MS2 spectra: choose one with %3")
                                       .arg(path, QString::number(found.size()),
                                            wanted == SpectraToRead::One ? QStringLiteral("--scan")
                                                                         : QStringLiteral("the list's column scan")));
    return found.constFirst();
}

QList<Result<int>> chooseSpectra(SpectrumFile *file, const QString &path, const QStringList &scans,
                                 SpectraToRead wanted)
{
    const NamedSpectra names(*file, scans);
    std::optional<Result<int>> only;
    QList<Result<int>> chosen;
    for (const QString &scan : scans) {
        if (scan.isEmpty() && !only)
            only = onlySpectrum(file, path, wanted);
        chosen.append(scan.isEmpty() ? *only : namedSpectrum(file, names, path, scan));
    }
    return chosen;
}

Error caughtAt(Error error, const char *function, int line)
{
    return error.ecatch(function, SOURCE_FILE, line);
}

} // namespace

Result<ObservedSpectrum> readObservedSpectrum(const QString &path, const QString &scan)
{
    const Result<std::unique_ptr<ObservedSpectra>> spectra = ObservedSpectra::open(path, {scan}, SpectraToRead::One);
    if (spectra.hasError())
        return caughtAt(spectra.error(), Q_FUNC_INFO, __LINE__);
    const Result<SpectrumOutcome> outcome = spectra.value()->read(0);
    if (outcome.hasError())
        return caughtAt(outcome.error(), Q_FUNC_INFO, __LINE__);
    if (outcome.value().problem.hasError())
        return caughtAt(outcome.value().problem, Q_FUNC_INFO, __LINE__);
    return outcome.value().spectrum;
}

ObservedSpectra::ObservedSpectra(std::unique_ptr<SpectrumFile> file) : m_file(std::move(file)) {}

ObservedSpectra::~ObservedSpectra() = default;

Result<std::unique_ptr<ObservedSpectra>> ObservedSpectra::open(const QString &path, const QStringList &scans,
                                                               SpectraToRead wanted)
{
    Result<std::unique_ptr<SpectrumFile>> file = openSpectrumFile(path, wanted);
    if (file.hasError())
        return caughtAt(file.error(), Q_FUNC_INFO, __LINE__);
    std::unique_ptr<ObservedSpectra> spectra(new ObservedSpectra(std::move(file).value()));
    if (spectra->m_file->spectrumCount() == 0)
        return cannotRead(inputName(path), QStringLiteral("it holds no spectrum"));
    spectra->m_places = chooseSpectra(spectra->m_file.get(), path, scans, wanted);
    return spectra;
}

Result<SpectrumOutcome> ObservedSpectra::read(qsizetype number) const
{
    const Result<int> &place = m_places[number];
    if (place.hasError())
        return SpectrumOutcome{{}, place.error()};
    Result<SpectrumOutcome> outcome = m_file->spectrum(place.value());
    if (outcome.hasError())
        return caughtAt(outcome.error(), Q_FUNC_INFO, __LINE__);
    return outcome;
}

} // namespace zav
