// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ChromatogramSource.h"
#include "XmlTagStream.h"

#include <zav/Result.h>

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zav {

/// Where a data array stands in the text of an element: from its start tag at `array` on, with its encoded values from
/// `begin` to `end`.
struct MzMlArrayPlace
{
    std::size_t array = 0;
    std::size_t begin = 0;
    std::size_t end = 0;
};

/// One `<chromatogram>` or `<spectrum>` of an mzML file as text.
struct MzMlElement
{
    QString id;                         ///< its native id; its number in the file, from 1, where it has none
    std::string text;                   ///< from start to end tag, see below
    QString problem;                    ///< empty, or why the text is of no use
    TraceOrigin origin;                 ///< of a chromatogram, as far as it was read
    TracePlace place;                   ///< for `MzMlElements::seek`
    std::vector<MzMlArrayPlace> arrays; ///< in the text, ascending; those without values are left out
};

/// The chromatograms or the spectra of an mzML file from first to last, one in memory at a time.
///
/// The file's index is not read, so that a wrong or missing one does no harm, nor is what stands behind `</mzML>`.
///
/// In the text, references to parameter groups are replaced by the groups' parameters. Outside of the data arrays only
/// the parameters that readers need stay (MS level, start time, precursor): decoders refuse parameters that their copy
/// of the ontology lacks. The `&` of character references is written out (`&amp;#55;`).
///
/// Failures are a tag of more than 1 MiB, an element of more than 256 MiB, a parameter group of more than 16 KiB, more
/// than 10,000 groups, and elements nested more than 100 deep.
class MzMlElements
{
public:
    /// `element` is "chromatogram" or "spectrum".
    MzMlElements(std::unique_ptr<ByteStream> bytes, const char *element);

    /// The next one; an empty optional at the end of the document. An error for a file that is not mzML, is damaged
    /// outside of the elements asked for, or ends too early.
    Result<std::optional<MzMlElement>> next();

    /// Goes to an element that `next` has yielded: `next` yields it again, then those behind it.
    Error seek(const TracePlace &place);

    QString name() const { return m_tags.name(); }

    /// What the list's own attribute says, once its start has been read: -1 before.
    qint64 declaredCount() const { return m_declaredCount; }

    /// How many spectra the file declares to have, as far as it has been read.
    qint64 declaredSpectra() const { return m_declaredSpectra; }

private:
    bool advance();
    Error step();
    Error open(const QByteArray &tagName);
    Error close(const QByteArray &tagName);
    Error readGroup();
    Result<MzMlElement> readElement();
    Error readContent(MzMlElement *element);
    bool endsUnclosed() const;
    void appendTag(MzMlElement *element);
    void notePlace(MzMlElement *element);
    void appendGroup(MzMlElement *element) const;
    void appendParameter(QByteArrayView tag, MzMlElement *element) const;
    void noteOrigin(QByteArrayView parameter, TraceOrigin *origin) const;
    Error endOfFile() const;

    XmlTagStream m_tags;
    const QByteArray m_element;
    const QByteArray m_list;                             // the element around them
    std::vector<QByteArray> m_open;                      // names of the elements around the current tag
    std::vector<QByteArray> m_around;                    // likewise, around the elements asked for
    std::map<QString, std::vector<QByteArray>> m_groups; // the tags within each
    qint64 m_declaredCount = -1;
    qint64 m_declaredSpectra = 0;
    qint64 m_number = 0;
    bool m_isTagPending = false;  // the tag of `m_tags` is still to be looked at
    bool m_isInArray = false;     // a data array of the element that is being read
    std::size_t m_arrayAt = 0;    // where it begins in the element's text
    bool m_isInPrecursor = false; // likewise
    bool m_isDone = false;
};

} // namespace zav
