// SPDX-License-Identifier: Apache-2.0
#include "PeptideCodec.h"

#include <cstring>

namespace zav {

namespace {

template <typename T>
void put(QByteArray *bytes, T value)
{
    bytes->append(reinterpret_cast<const char *>(&value), sizeof value);
}

template <typename T>
T take(const char **from)
{
    T value{};
    std::memcpy(&value, *from, sizeof value);
    *from += sizeof value;
    return value;
}

} // namespace

void encodePeptide(const LibraryPeptide &peptide, QByteArray *bytes)
{
    put(bytes, static_cast<quint16>(peptide.sequence.size()));
    put(bytes, static_cast<quint8>(peptide.isDecoy));
    put(bytes, static_cast<quint32>(peptide.proteins.size()));
    bytes->append(peptide.sequence);
    for (const int protein : peptide.proteins)
        put(bytes, protein);
}

LibraryPeptide decodePeptide(const char **from)
{
    LibraryPeptide peptide;
    const qsizetype length = take<quint16>(from);
    peptide.isDecoy = take<quint8>(from) != 0;
    const auto proteinCount = static_cast<qsizetype>(take<quint32>(from));
    peptide.sequence = QByteArrayView(*from, length);
    *from += length;
    peptide.proteins.reserve(proteinCount);
    for (qsizetype i = 0; i < proteinCount; ++i)
        peptide.proteins.append(take<int>(from));
    return peptide;
}

} // namespace zav
