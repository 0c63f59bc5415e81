#include "ui/views/head_window.hpp"

#include <algorithm>

#include "app/model/usage_model.hpp"

namespace vorn {

std::optional<Format::Head> headOf(const UsageModel& model) {
    return Format::head(VornEngine::headline(model.assessments()), model.steer(), model.now());
}

const WindowAssessment* headWindow(const UsageModel& model) {
    const auto& assessments = model.assessments();
    const auto urgent = VornEngine::headline(assessments);
    if (!urgent) {
        return nullptr;
    }
    const auto head = headOf(model);
    const WindowKind& kind = head && head->steer ? head->steer->kind : urgent->window.kind;
    const auto found = std::ranges::find(assessments, kind, [](const auto& each) { return each.window.kind; });
    return found == assessments.end() ? nullptr : &*found;
}

}  // namespace vorn
