// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Error.h>

#include <QtCore/QByteArrayView>

namespace zav {

/// Bytes to sort by, and what belongs to them.
struct Record
{
    QByteArrayView key;     ///< 65535 bytes or fewer
    QByteArrayView payload; ///< compared where the keys are equal

    /// As `memcmp` orders the keys, a beginning of another key before it; then the payloads likewise.
    friend bool operator<(const Record &a, const Record &b);
};

int compareBytes(QByteArrayView a, QByteArrayView b);

/// Records in ascending order, one after the other.
class RecordStream
{
public:
    RecordStream() = default;
    virtual ~RecordStream() = default;
    RecordStream(const RecordStream &) = delete;
    RecordStream &operator=(const RecordStream &) = delete;

    /// Moves to the next record; false at the end and after a failure, which `error` tells apart.
    virtual bool next() = 0;

    /// Valid until the next call of `next`.
    virtual Record record() const = 0;

    virtual Error error() const = 0;
};

} // namespace zav
