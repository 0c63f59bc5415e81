#pragma once

#include <QDBusArgument>

namespace vorn {

/// For the stream operators of a type that is a structure on the bus: its fields, in their order there.
template <typename... Fields>
QDBusArgument& putStructure(QDBusArgument& out, const Fields&... fields) {
    out.beginStructure();
    (out << ... << fields);
    out.endStructure();
    return out;
}

template <typename... Fields>
const QDBusArgument& takeStructure(const QDBusArgument& in, Fields&... fields) {
    in.beginStructure();
    (in >> ... >> fields);
    in.endStructure();
    return in;
}

}  // namespace vorn
