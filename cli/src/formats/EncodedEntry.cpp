// SPDX-License-Identifier: Apache-2.0
#include "EncodedEntry.h"

#include <QtCore/QtEndian>

#include <new>

#include <zlib.h>

namespace zav {

namespace {

constexpr double SCALE = 10000;

// An array is a few hundred bytes: zlib's usual tables would take longer to clear than it takes to pack.
constexpr int WINDOW_BITS = 12;
constexpr int MEMORY_LEVEL = 4;

template <typename Number, typename Value>
QByteArray packed(const QList<FragmentPeak> &peaks, QSysInfo::Endian order, const Value &value)
{
    QByteArray bytes(peaks.size() * qsizetype(sizeof(Number)), Qt::Uninitialized);
    char *end = bytes.data();
    for (const FragmentPeak &peak : peaks) {
        const auto number = static_cast<Number>(value(peak));
        if (order == QSysInfo::BigEndian)
            qToBigEndian(number, end);
        else
            qToLittleEndian(number, end);
        end += sizeof(Number);
    }
    return bytes;
}

float stored(const FragmentPeak &peak)
{
    return static_cast<float>(peak.intensity * SCALE);
}

} // namespace

EncodedEntry encodedPeptide(const LibraryEntry &entry)
{
    EncodedEntry encoded;
    encoded.peptide = entry.peptidoform.sequence().toUtf8();
    encoded.charge = entry.charge;
    encoded.precursorMz = entry.precursorMz;
    encoded.peakCount = static_cast<int>(entry.peaks.size());
    for (const LibraryProtein &protein : entry.proteins)
        encoded.proteins.append(protein.accession);
    encoded.isDecoy = entry.isDecoy;
    return encoded;
}

void encodeModifications(const LibraryEntry &entry, int decimals, EncodedEntry *encoded)
{
    encoded->modifications = modifiedResidues(entry.peptidoform);
    TextBuffer text;
    addMassNotation(&text, entry.peptidoform, encoded->modifications, decimals);
    encoded->modifiedPeptide = text.take();
}

QByteArray massArray(const QList<FragmentPeak> &peaks, QSysInfo::Endian order)
{
    return packed<double>(peaks, order, [](const FragmentPeak &peak) { return peak.mz; });
}

QByteArray intensityArray(const QList<FragmentPeak> &peaks, QSysInfo::Endian order)
{
    return packed<float>(peaks, order, stored);
}

double storedIntensity(const QList<FragmentPeak> &peaks)
{
    double sum = 0;
    for (const FragmentPeak &peak : peaks)
        sum += static_cast<double>(stored(peak));
    return sum;
}

QByteArray compressed(const QByteArray &bytes)
{
    z_stream stream{};
    QByteArray packedBytes;
    if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, WINDOW_BITS, MEMORY_LEVEL, Z_DEFAULT_STRATEGY) != Z_OK)
        throw std::bad_alloc(); // it fails for want of memory only
    packedBytes.resize(static_cast<qsizetype>(deflateBound(&stream, static_cast<uLong>(bytes.size()))));
    stream.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(bytes.constData()));
    stream.avail_in = static_cast<uInt>(bytes.size());
    stream.next_out = reinterpret_cast<Bytef *>(packedBytes.data());
    stream.avail_out = static_cast<uInt>(packedBytes.size());
    deflate(&stream, Z_FINISH);
    packedBytes.truncate(static_cast<qsizetype>(stream.total_out));
    deflateEnd(&stream);
    return packedBytes;
}

} // namespace zav
