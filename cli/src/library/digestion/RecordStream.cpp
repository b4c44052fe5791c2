// SPDX-License-Identifier: Apache-2.0
#include "RecordStream.h"

#include <algorithm>
#include <cstring>

namespace zav {

int compareBytes(QByteArrayView a, QByteArrayView b)
{
    const auto common = static_cast<size_t>(std::min(a.size(), b.size()));
    const int order = common == 0 ? 0 : std::memcmp(a.data(), b.data(), common);
    if (order != 0)
        return order;
    return a.size() < b.size() ? -1 : static_cast<int>(a.size() > b.size());
}

bool operator<(const Record &a, const Record &b)
{
    const int order = compareBytes(a.key, b.key);
    return order != 0 ? order < 0 : compareBytes(a.payload, b.payload) < 0;
}

} // namespace zav
