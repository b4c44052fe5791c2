// SPDX-License-Identifier: Apache-2.0
#include "MzMlElements.h"

#include "PrintableText.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <string_view>
#include <utility>

namespace zav {

namespace {

constexpr char GROUP[] = "referenceableParamGroup";
constexpr char GROUP_REFERENCE[] = "referenceableParamGroupRef";
constexpr char ARRAY[] = "binaryDataArray";
constexpr char VALUES[] = "binary";
constexpr char PARAMETER[] = "cvParam";
constexpr char USER_PARAMETER[] = "userParam";
constexpr char PRECURSOR[] = "precursor";
constexpr std::size_t MAX_DEPTH = 100; // mzML needs about ten
constexpr std::size_t MAX_GROUPS = 10000;
constexpr qsizetype MAX_GROUP_BYTES = 1 << 14; // which each reference to it repeats; real ones have 1,000

// MS level, "MS1 spectrum" where no level is given, scan start time; of a precursor its isolation target, m/z, charge.
bool isNeeded(QByteArrayView parameter)
{
    constexpr const char *ACCESSIONS[] = {"MS:1000511", "MS:1000579", "MS:1000016",
                                          "MS:1000827", "MS:1000744", "MS:1000041"};
    const QByteArrayView accession = xmlAttribute(parameter, "accession").value_or(QByteArrayView());
    return std::any_of(std::begin(ACCESSIONS), std::end(ACCESSIONS),
                       [&](const char *needed) { return accession == needed; });
}

bool isOneOf(QByteArrayView text, std::initializer_list<const char *> names)
{
    return std::any_of(names.begin(), names.end(), [&](const char *name) { return text == name; });
}

// Of a user parameter: writers spell it `peptide_sequence`, `PeptideSequence`, `modified sequence` and so on.
bool namesPeptide(QByteArrayView userParameter)
{
    QByteArray name = userParameter.toByteArray().toLower();
    for (const char separator : {'_', ' ', '-'})
        name.replace(QByteArray(1, separator), "");
    return isOneOf(name, {"peptide", "peptidesequence", "modifiedsequence", "modifiedpeptidesequence",
                          "peptidemodifiedsequence", "fullpeptidename", "peptidoform"});
}

double positiveNumber(QByteArrayView text)
{
    bool isNumber = false;
    const double value = text.toDouble(&isNumber);
    return isNumber && std::isfinite(value) && value > 0 ? value : 0;
}

void append(QByteArrayView bytes, std::string *out)
{
    out->append(bytes.data(), static_cast<std::size_t>(bytes.size()));
}

// ProteoWizard reads past the end of its copy of a reference such as `&#55;`, so it gets none. The numbers and
// accessions that it decodes are never written so; ids are read here.
void maskCharacterReferences(MzMlElement *element)
{
    constexpr std::string_view REFERENCE = "&#", MASK = "amp;";
    std::vector<std::size_t> found;
    for (std::size_t at = element->text.find(REFERENCE); at != std::string::npos;
         at = element->text.find(REFERENCE, at + 1))
        found.push_back(at);
    if (found.empty())
        return;
    std::string masked;
    std::size_t done = 0;
    for (const std::size_t at : found) {
        masked.append(element->text, done, at + 1 - done).append(MASK);
        done = at + 1;
    }
    element->text = masked.append(element->text, done);
    const auto move = [&](std::size_t *place) {
        *place += MASK.size() *
                  static_cast<std::size_t>(std::lower_bound(found.begin(), found.end(), *place) - found.begin());
    };
    for (MzMlArrayPlace &place : element->arrays) {
        move(&place.array);
        move(&place.begin);
        move(&place.end);
    }
}

} // namespace

MzMlElements::MzMlElements(std::unique_ptr<ByteStream> bytes, const char *element)
    : m_tags(std::move(bytes)), m_element(element), m_list(m_element + "List")
{}

Result<std::optional<MzMlElement>> MzMlElements::next()
{
    while (!m_isDone) {
        if (!advance())
            return endOfFile();
        if (m_tags.tagName() == m_element && !m_tags.isEnd()) {
            m_around = m_open;
            Result<MzMlElement> element = readElement();
            if (element.hasError())
                return element.error();
            return std::optional<MzMlElement>(std::move(element).value());
        }
        if (Error error = step(); error.hasError())
            return error;
    }
    return std::optional<MzMlElement>();
}

Error MzMlElements::seek(const TracePlace &place)
{
    m_open = m_around;
    m_number = place.order;
    m_isTagPending = false;
    m_isDone = false;
    return m_tags.seek(place.offset);
}

bool MzMlElements::advance()
{
    return std::exchange(m_isTagPending, false) || m_tags.next();
}

// Takes note of a tag outside of the elements asked for.
Error MzMlElements::step()
{
    const QByteArray tagName = m_tags.tagName().toByteArray();
    if (m_tags.isEnd())
        return close(tagName);
    if (tagName == m_list)
        m_declaredCount = m_tags.attribute("count").toLongLong();
    if (tagName == "spectrumList")
        m_declaredSpectra = m_tags.attribute("count").toLongLong();
    if (tagName == GROUP && !m_tags.isEmpty())
        return readGroup();
    return m_tags.isEmpty() ? Error() : open(tagName);
}

Error MzMlElements::open(const QByteArray &tagName)
{
    if (m_open.empty() && tagName != "mzML" && tagName != "indexedmzML")
        return m_tags.failure(QStringLiteral("it is not mzML: its outermost element is <%1>")
                                  .arg(displayText(QString::fromUtf8(tagName))));
    if (m_open.size() >= MAX_DEPTH)
        return m_tags.failure(QStringLiteral("it is not mzML: its elements nest too deeply"));
    m_open.push_back(tagName);
    return {};
}

Error MzMlElements::close(const QByteArray &tagName)
{
    if (m_open.empty() || m_open.back() != tagName)
        return m_tags.failure(
            QStringLiteral("it is damaged: </%1> closes no open element").arg(displayText(QString::fromUtf8(tagName))));
    m_open.pop_back();
    m_isDone = tagName == "mzML";
    return {};
}

Error MzMlElements::readGroup()
{
    std::vector<QByteArray> &group = m_groups[m_tags.attribute("id")];
    qsizetype size = 0;
    for (const QByteArray &tag : group) // of one with the same id
        size += tag.size();
    while (m_tags.next()) {
        if (m_tags.isEnd() && m_tags.tagName() == GROUP)
            return {};
        if (!isSoundXmlTag(m_tags.tag()))
            return m_tags.failure(QStringLiteral("it holds a tag that is not XML"));
        group.push_back(m_tags.tag().toByteArray());
        size += m_tags.tag().size();
        if (size > MAX_GROUP_BYTES || m_groups.size() > MAX_GROUPS)
            return m_tags.failure(QStringLiteral("it has parameter groups without end"));
    }
    return endOfFile();
}

Result<MzMlElement> MzMlElements::readElement()
{
    MzMlElement element;
    element.id = m_tags.attribute("id");
    element.place = {m_tags.tagOffset(), 0, m_number};
    ++m_number;
    if (element.id.isEmpty())
        element.id = QString::number(m_number);
    const bool isEmpty = m_tags.isEmpty();
    m_isInArray = false;
    m_arrayAt = 0;
    m_isInPrecursor = false;
    appendTag(&element);
    if (Error error = isEmpty ? Error() : readContent(&element); error.hasError())
        return error;
    maskCharacterReferences(&element);
    return element;
}

Error MzMlElements::readContent(MzMlElement *element)
{
    while (m_tags.next(&element->text)) {
        if (endsUnclosed()) {
            m_isTagPending = true;
            element->problem = QStringLiteral("its end tag is missing");
            return {};
        }
        appendTag(element);
        if (m_tags.isEnd() && m_tags.tagName() == m_element)
            return {};
    }
    if (m_tags.error().hasError())
        return m_tags.error();
    return m_tags.failure(
        QStringLiteral("it ends within %1 '%2'").arg(QString::fromUtf8(m_element), displayText(element->id)));
}

// Whether a tag can only stand behind the element that is being read.
bool MzMlElements::endsUnclosed() const
{
    return m_tags.isEnd() ? m_tags.tagName() == m_list : m_tags.tagName() == m_element;
}

void MzMlElements::appendTag(MzMlElement *element)
{
    const QByteArrayView tagName = m_tags.tagName();
    if (!isSoundXmlTag(m_tags.tag()))
        element->problem = QStringLiteral("it holds a tag that is not XML");
    if (tagName == ARRAY)
        m_isInArray = !m_tags.isEnd();
    if (tagName == ARRAY || tagName == VALUES)
        notePlace(element);
    if (tagName == PRECURSOR)
        m_isInPrecursor = !m_tags.isEnd() && !m_tags.isEmpty();
    if (tagName == GROUP_REFERENCE)
        appendGroup(element);
    else if (tagName == PARAMETER || tagName == USER_PARAMETER)
        appendParameter(m_tags.tag(), element);
    else
        append(m_tags.tag(), &element->text);
}

// Called in front of the tag: at an end tag the text of its element has just been appended.
void MzMlElements::notePlace(MzMlElement *element)
{
    const std::size_t at = element->text.size();
    if (m_tags.isEmpty())
        return;
    if (m_tags.tagName() == ARRAY)
        m_arrayAt = m_tags.isEnd() ? m_arrayAt : at;
    else if (!m_tags.isEnd())
        element->arrays.push_back({m_arrayAt, at + static_cast<std::size_t>(m_tags.tag().size()), 0});
    else if (!element->arrays.empty())
        element->arrays.back().end = at;
}

void MzMlElements::appendGroup(MzMlElement *element) const
{
    if (m_tags.isEnd())
        return;
    const QString reference = m_tags.attribute("ref");
    const auto group = m_groups.find(reference);
    if (group == m_groups.end()) {
        element->problem = QStringLiteral("it refers to parameter group '%1', which the file does not have")
                               .arg(displayText(reference));
        return;
    }
    for (const QByteArray &tag : group->second)
        appendParameter(tag, element);
}

// Writes each as an empty element, so that end tags can be passed over.
void MzMlElements::appendParameter(QByteArrayView tag, MzMlElement *element) const
{
    if (m_list == "chromatogramList" && !m_isInArray)
        noteOrigin(tag, &element->origin);
    if (tag.startsWith("</") || tag.startsWith("<userParam") || (!m_isInArray && !isNeeded(tag)))
        return;
    append(tag.chopped(tag.endsWith("/>") ? 2 : 1), &element->text);
    append("/>", &element->text);
}

// What tells the precursor of a chromatogram. Both a bare and a modified sequence count where a file has both.
void MzMlElements::noteOrigin(QByteArrayView parameter, TraceOrigin *origin) const
{
    const QByteArrayView accession = xmlAttribute(parameter, "accession").value_or(QByteArrayView());
    const QByteArrayView value = xmlAttribute(parameter, "value").value_or(QByteArrayView());
    const bool isPeptide = parameter.startsWith("<userParam")
                               ? namesPeptide(xmlAttribute(parameter, "name").value_or(QByteArrayView()))
                               : isOneOf(accession, {"MS:1000888", "MS:1000889"});
    if (isPeptide && !value.isEmpty())
        origin->peptide += (origin->peptide.isEmpty() ? QString() : QStringLiteral(" ")) + m_tags.decoded(value);
    if (accession == "MS:1000129" || accession == "MS:1000130")
        origin->polarity = accession == "MS:1000130" ? '+' : '-';
    if (accession == "MS:1000827" && m_isInPrecursor && origin->isolationTarget == 0)
        origin->isolationTarget = positiveNumber(value);
}

Error MzMlElements::endOfFile() const
{
    if (m_tags.error().hasError())
        return m_tags.error();
    if (m_open.empty())
        return m_tags.failure(QStringLiteral("it is not mzML: it holds no XML element"));
    return m_tags.failure(QStringLiteral("it is cut short: it ends within <%1>").arg(QString::fromUtf8(m_open.back())));
}

} // namespace zav
