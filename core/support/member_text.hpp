#pragma once

#include <string_view>

namespace vorn {

/// The value of an object's member as it stands in the JSON text; of several with the same name the last, and empty
/// where there is none. Knows brackets and texts and leaves it to a reader to say whether what is between them is JSON;
/// a name that is spelled with escapes is not found. Takes linear time and no memory.
std::string_view memberText(std::string_view object, std::string_view name);

}  // namespace vorn
