#include "ui/answer/other_limit.hpp"

#include <algorithm>

#include "core/wording/format.hpp"
#include "core/wording/limit_text.hpp"

namespace vorn {

QVariantList otherLimits(const Answer& answer) {
    QVariantList list;
    for (const Format::LimitLine& line : Format::limitLines(answer.others, answer.now)) {
        list.append(QVariant::fromValue(OtherLimitContent{
            .title = QString::fromStdString(line.title),
            .text = QString::fromStdString(line.text),
            .percent = line.usedPercent ? QString::fromStdString(Format::percent(*line.usedPercent)) : QString(),
            .used = std::clamp(line.usedPercent.value_or(0) / 100, 0.0, 1.0),
            .isReached = line.isReached}));
    }
    return list;
}

}  // namespace vorn
