#pragma once

#include <QVariantList>
#include <vector>

namespace vorn {

/// Values of a gadget as QML takes a list of them.
template <typename Value>
QVariantList variants(const std::vector<Value>& values) {
    QVariantList list;
    for (const Value& value : values) {
        list << QVariant::fromValue(value);
    }
    return list;
}

}  // namespace vorn
