// SPDX-License-Identifier: Apache-2.0
#include "MzMlPeaks.h"

#include "ProteoWizard.h"

#include <pwiz/data/msdata/BinaryDataEncoder.hpp>

#include <string_view>
#include <utility>

namespace zav {

namespace {

using pwiz::msdata::BinaryDataEncoder;

/// What the tags of a data array say; each may be said once.
struct ArrayHead
{
    std::optional<pwiz::cv::CVID> kind; ///< m/z or intensity
    std::optional<BinaryDataEncoder::Precision> precision;
    std::optional<BinaryDataEncoder::Compression> compression;
    pwiz::cv::CVID unit = pwiz::cv::CVID_Unknown;
    qsizetype encodedLength = -1;

    bool isWhole() const { return kind && precision && compression; }
};

template <typename Value>
bool setOnce(Value value, std::optional<Value> *out)
{
    if (*out)
        return false;
    *out = value;
    return true;
}

bool noteKind(pwiz::cv::CVID kind, QByteArrayView parameter, ArrayHead *head)
{
    const std::optional<QByteArrayView> unit = xmlAttribute(parameter, "unitAccession");
    if (unit && !unit->isEmpty()) {
        head->unit = pwiz::cv::cvTermInfo(unit->toByteArray().toStdString()).cvid;
        if (head->unit == pwiz::cv::CVID_Unknown)
            return false;
    }
    return setOnce(kind, &head->kind);
}

// False for a parameter of another array, of a stranger encoding, or that is said twice.
bool noteParameter(QByteArrayView parameter, ArrayHead *head)
{
    const QByteArrayView accession = xmlAttribute(parameter, "accession").value_or(QByteArrayView());
    if (accession == "MS:1000514")
        return noteKind(pwiz::cv::MS_m_z_array, parameter, head);
    if (accession == "MS:1000515")
        return noteKind(pwiz::cv::MS_intensity_array, parameter, head);
    if (accession == "MS:1000521")
        return setOnce(BinaryDataEncoder::Precision_32, &head->precision);
    if (accession == "MS:1000523")
        return setOnce(BinaryDataEncoder::Precision_64, &head->precision);
    if (accession == "MS:1000574")
        return setOnce(BinaryDataEncoder::Compression_Zlib, &head->compression);
    if (accession == "MS:1000576")
        return setOnce(BinaryDataEncoder::Compression_None, &head->compression);
    return false;
}

bool noteTag(QByteArrayView tag, ArrayHead *head)
{
    if (tag.startsWith("<cvParam "))
        return noteParameter(tag, head);
    if (!tag.startsWith("<binaryDataArray "))
        return tag == "<binary>";
    bool isNumber = false;
    head->encodedLength = xmlAttribute(tag, "encodedLength").value_or(QByteArrayView()).toLongLong(&isNumber);
    return isNumber && !xmlAttribute(tag, "arrayLength");
}

// From the array's start tag to that of its values.
std::optional<ArrayHead> arrayHead(QByteArrayView text)
{
    ArrayHead head;
    for (qsizetype at = text.indexOf('<'); at >= 0; at = text.indexOf('<', at)) {
        const qsizetype size = xmlMarkupSize(text.sliced(at));
        if (size < 0 || !noteTag(text.sliced(at, size), &head))
            return std::nullopt;
        at += size;
    }
    return head.isWhole() ? std::optional(head) : std::nullopt;
}

std::optional<std::vector<double>> decoded(std::string_view values, const ArrayHead &head, std::size_t length)
{
    if (head.encodedLength != static_cast<qsizetype>(values.size()) || values.find('&') != std::string_view::npos)
        return std::nullopt;
    BinaryDataEncoder::Config config;
    config.precision = *head.precision;
    config.compression = *head.compression;
    pwiz::util::BinaryData<double> numbers;
    const Error error = caughtAs({}, [&]() -> Error {
        BinaryDataEncoder(config).decode(values.data(), values.size(), numbers);
        return {};
    });
    if (error.hasError() || numbers.size() != length || length == 0)
        return std::nullopt;
    const double *first = &*numbers.cbegin();
    return std::vector<double>(first, first + length);
}

} // namespace

std::optional<MzMlPeaks> plainPeaks(const MzMlElement &spectrum, std::size_t length)
{
    if (spectrum.arrays.size() != 2)
        return std::nullopt;
    MzMlPeaks found;
    const std::string_view text(spectrum.text);
    for (const MzMlArrayPlace &place : spectrum.arrays) {
        if (place.end < place.begin)
            return std::nullopt;
        const std::string_view tags = text.substr(place.array, place.begin - place.array);
        const std::optional<ArrayHead> head = arrayHead({tags.data(), static_cast<qsizetype>(tags.size())});
        std::optional<std::vector<double>> values =
            head ? decoded(text.substr(place.begin, place.end - place.begin), *head, length) : std::nullopt;
        if (!values)
            return std::nullopt;
        const bool isMz = head->kind == pwiz::cv::MS_m_z_array;
        if (!isMz)
            found.intensityUnit = unitText(head->unit);
        (isMz ? found.peaks.mzs : found.peaks.intensities) = std::move(*values);
    }
    const bool hasBoth = !found.peaks.mzs.empty() && !found.peaks.intensities.empty();
    return hasBoth ? std::optional(std::move(found)) : std::nullopt;
}

std::string textWithoutValues(const MzMlElement &element)
{
    std::string text;
    std::size_t at = 0;
    for (const MzMlArrayPlace &place : element.arrays) {
        if (place.end < place.begin)
            return element.text;
        text.append(element.text, at, place.begin - at);
        at = place.end;
    }
    return text.append(element.text, at);
}

} // namespace zav
