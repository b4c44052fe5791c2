// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtCore/QByteArrayView>
#include <QtCore/QString>

#include <memory>

namespace zav {

/// Inflates gzip data (RFC 1952) piece by piece, also several members one behind the other. What follows the last
/// member and begins none is passed over, as `gzip -d` does.
class GzipInflater
{
public:
    GzipInflater();
    ~GzipInflater();

    /// Inflates from the front of `input`, which it shortens, at most `size` bytes into `output`. Returns how many;
    /// -1 for data that is no gzip, after which the object is of no more use.
    qint64 inflate(QByteArrayView *input, char *output, qint64 size);

    /// Whether all members so far were whole.
    bool isWhole() const;

    /// Empty, or why this build inflates nothing; then no other function may be called.
    static QString whyNot();

private:
    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace zav
