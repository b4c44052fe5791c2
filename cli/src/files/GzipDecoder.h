// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <zav/Error.h>

#include <QtCore/QByteArray>

#include <memory>

namespace zav {

/// Decodes a gzip stream (RFC 1952) piece by piece, also one of several members, as bgzip writes them.
class GzipDecoder
{
public:
    GzipDecoder();
    ~GzipDecoder();

    /// Decodes a piece of the stream, in place of what `decoded` held; what follows the last member as padding of
    /// zero bytes is dropped. `Failure` when the bytes are no gzip or are damaged.
    Error decode(const QByteArray &encoded, QByteArray *decoded);

    /// Whether the bytes decoded so far end where a member ends; a stream that ends elsewhere was cut off.
    bool isComplete() const;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace zav
