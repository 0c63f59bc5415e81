#pragma once

#include <functional>
#include <optional>
#include <string>

#include "core/data/client_answer.hpp"
#include "core/support/process/process.hpp"
#include "core/support/time.hpp"

namespace vorn {

/// Asking the client once, in the best form that it knows: for a report, else for the text of /usage. Blocks; meant for
/// a thread of its own.
struct ClientQuestion {
    std::optional<std::string> claudePath{};  ///< The executable that the user chose; absent or empty: look for one.
    /// Somebody looks at the breakdown: where the report does not tell it, the text is asked for as well, at most once
    /// an hour.
    bool wantsBreakdown = false;
    bool storesNothing = false;  ///< What is learnt of the client is not kept for the next question.
    Seconds timeout{30};         ///< For all that is run for it.

    /// `now` is asked after the client has ended. Throws ProbeError, or Cancelled when `cancellation` asked for it.
    [[nodiscard]] ClientAnswer ask(const std::function<Instant()>& now,
                                   const Cancellation* cancellation = nullptr) const;
};

}  // namespace vorn
