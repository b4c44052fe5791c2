// SPDX-License-Identifier: Apache-2.0
#include "MzMlText.h"

#include <QtCore/QtEndian>

namespace zav {

namespace {

template <typename Number>
QByteArray littleEndian(const QList<double> &values)
{
    constexpr auto SIZE = static_cast<qsizetype>(sizeof(Number));
    QByteArray bytes(values.size() * SIZE, '\0');
    for (qsizetype i = 0; i < values.size(); ++i)
        qToLittleEndian(static_cast<Number>(values[i]), bytes.data() + SIZE * i);
    return bytes;
}

QByteArray parameter(const QByteArray &accession, const QByteArray &name, const QByteArray &rest = QByteArray())
{
    return "<cvParam cvRef=\"MS\" accession=\"" + accession + "\" name=\"" + name + "\"" + rest + "/>";
}

QByteArray encodingParameters(const ArrayEncoding &encoding)
{
    if (!encoding.parameters.isEmpty())
        return encoding.parameters;
    return (encoding.isFloat32 ? parameter("MS:1000521", "32-bit float") : parameter("MS:1000523", "64-bit float")) +
           (encoding.isCompressed ? parameter("MS:1000574", "zlib compression")
                                  : parameter("MS:1000576", "no compression"));
}

} // namespace

QByteArray dataArray(const QByteArray &accession, const QByteArray &name, const QList<double> &values,
                     const ArrayEncoding &encoding, const QByteArray &unitAccession)
{
    QByteArray bytes = encoding.isFloat32 ? littleEndian<float>(values) : littleEndian<double>(values);
    if (encoding.isCompressed)
        bytes = qCompress(bytes).mid(4); // Qt puts the length in front of the zlib stream
    const QByteArray text = bytes.toBase64();
    const QByteArray unit = unitAccession.isEmpty() ? QByteArray()
                                                    : " unitCvRef=\"" + unitAccession.left(2) + "\" unitAccession=\"" +
                                                          unitAccession + "\" unitName=\"x\"";
    return "<binaryDataArray encodedLength=\"" + QByteArray::number(text.size()) + "\">" +
           encodingParameters(encoding) + parameter(accession, name, unit) + "<binary>" + text +
           "</binary></binaryDataArray>";
}

QByteArray mzMlDocument(const QByteArray &runContent, const QByteArray &beforeRun)
{
    return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
           "<mzML xmlns=\"http://psi.hupo.org/ms/mzml\" id=\"x\" version=\"1.1.0\">\n"
           "<cvList count=\"1\"><cv id=\"MS\" fullName=\"PSI-MS\" URI=\"x\"/></cvList>\n"
           "<fileDescription><fileContent/></fileDescription>\n" +
           beforeRun + "<run id=\"x\">" + runContent + "</run></mzML>\n";
}

QByteArray indexedMzMl(const QByteArray &document, const QByteArray &index, const QByteArray &indexOffset)
{
    const QByteArray wrapped =
        "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<indexedmzML xmlns=\"http://psi.hupo.org/ms/mzml\">\n" +
        document.mid(document.indexOf("<mzML"));
    const QByteArray offset = indexOffset.isEmpty() ? QByteArray::number(wrapped.size()) : indexOffset;
    return wrapped + "<indexList count=\"1\">" + index + "</indexList>\n<indexListOffset>" + offset +
           "</indexListOffset>\n<fileChecksum>0</fileChecksum>\n</indexedmzML>\n";
}

// RFC 1952: a gzip member around the deflate stream that qCompress wraps as zlib.
QByteArray gzip(const QByteArray &content)
{
    quint32 crc = 0xFFFFFFFFU;
    for (const char byte : content) {
        crc ^= static_cast<quint8>(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ (0xEDB88320U & (0U - (crc & 1U)));
    }
    const QByteArray zlib = qCompress(content).mid(4);
    QByteArray trailer(8, '\0');
    qToLittleEndian(~crc, trailer.data());
    qToLittleEndian(static_cast<quint32>(content.size()), trailer.data() + 4);
    return QByteArray("\x1f\x8b\x08\0\0\0\0\0\0\x03", 10) + zlib.mid(2, zlib.size() - 6) + trailer;
}

} // namespace zav
