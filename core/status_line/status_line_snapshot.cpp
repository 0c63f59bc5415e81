#include "core/status_line/status_line_snapshot.hpp"

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <utility>

#include <nlohmann/json.hpp>

#include "core/support/file.hpp"
#include "core/support/json.hpp"

namespace vorn {
namespace {

/// In the path of every turn of a conversation: better no snapshot than a status line that is late.
constexpr std::chrono::milliseconds kPatience{5};
constexpr std::size_t kLargestFile = std::size_t{16} << 20U;

enum class Format : std::uint8_t { input, file };

struct Members {
    std::optional<Instant> observedAt;  ///< Only a file has it.
    std::optional<StatusLineSnapshot::RateLimits> rateLimits;
    std::optional<std::string> sessionID;
    std::optional<std::string> version;
};

/// Takes the members out of the stream of tokens, since a document tree of hostile input would take many times its size
/// in memory. A member that is not looked for may hold anything; of several with the same name the last counts; null is
/// as good as none.
class MemberReader : public nlohmann::json_sax<nlohmann::json> {
public:
    explicit MemberReader(Format format) : m_format(format) {}
    [[nodiscard]] Members take() { return std::move(m_members); }

    bool null() override {
        switch (m_expected) {
            case Member::observedAt:
                m_members.observedAt.reset();
                return true;
            case Member::rateLimits:
                m_members.rateLimits.reset();
                return true;
            case Member::sessionID:
                m_members.sessionID.reset();
                return true;
            case Member::version:
                m_members.version.reset();
                return true;
            case Member::fiveHour:
            case Member::sevenDay:
                limitSlot(m_expected).reset();
                return true;
            case Member::usedPercentage:
                limit().usedPercentage.reset();
                return true;
            case Member::resetsAt:
                limit().resetsAt.reset();
                return true;
            case Member::other:
                return true;
            case Member::document:
                break;
        }
        return false;
    }
    bool boolean(bool /*value*/) override { return m_expected == Member::other; }
    bool number_integer(number_integer_t value) override { return number(static_cast<double>(value)); }
    bool number_unsigned(number_unsigned_t value) override { return number(static_cast<double>(value)); }
    bool number_float(number_float_t value, const string_t& /*digits*/) override { return number(value); }
    bool binary(binary_t& /*value*/) override { return false; }
    bool string(string_t& value) override {
        if (m_expected == Member::sessionID) {
            m_members.sessionID = std::move(value);
        } else if (m_expected == Member::version) {
            m_members.version = std::move(value);
        } else {
            return m_expected == Member::other;
        }
        return true;
    }

    bool start_object(std::size_t /*size*/) override {
        switch (m_expected) {
            case Member::document:
                break;
            case Member::rateLimits:
                m_members.rateLimits.emplace();
                break;
            case Member::fiveHour:
            case Member::sevenDay:
                limitSlot(m_expected).emplace();
                break;
            case Member::other:
                ++m_skippedDepth;
                return true;
            default:
                return false;
        }
        m_object = m_expected;
        return true;
    }
    bool end_object() override {
        if (m_skippedDepth > 0) {
            --m_skippedDepth;
        } else {
            m_object = m_object == Member::rateLimits ? Member::document : Member::rateLimits;
        }
        return true;
    }
    bool start_array(std::size_t /*size*/) override {
        ++m_skippedDepth;
        return m_expected == Member::other;
    }
    bool end_array() override {
        --m_skippedDepth;
        return true;
    }
    bool key(string_t& name) override {
        m_expected = m_skippedDepth > 0 ? Member::other : memberNamed(name);
        return true;
    }
    bool parse_error(std::size_t /*position*/, const std::string& /*token*/,
                     const nlohmann::detail::exception& /*reason*/) override {
        return false;
    }

private:
    enum class Member : std::uint8_t {
        document,  ///< the outermost value
        other,     ///< not looked for, or inside such a one
        observedAt,
        rateLimits,
        sessionID,
        version,
        fiveHour,
        sevenDay,
        usedPercentage,
        resetsAt,
    };

    [[nodiscard]] Member memberNamed(std::string_view name) const {
        struct Known {
            std::string_view name;
            Member member;
        };
        static constexpr Known kOfDocument[] = {{"rate_limits", Member::rateLimits},
                                                {"session_id", Member::sessionID},
                                                {"version", Member::version},
                                                {"observed_at", Member::observedAt}};
        static constexpr Known kOfRateLimits[] = {{"five_hour", Member::fiveHour}, {"seven_day", Member::sevenDay}};
        static constexpr Known kOfLimit[] = {{"used_percentage", Member::usedPercentage},
                                             {"resets_at", Member::resetsAt}};
        const auto find = [name](const auto& table) {
            for (const Known& known : table) {
                if (known.name == name) {
                    return known.member;
                }
            }
            return Member::other;
        };
        if (m_object == Member::document) {
            const Member member = find(kOfDocument);
            return member == Member::observedAt && m_format == Format::input ? Member::other : member;
        }
        return m_object == Member::rateLimits ? find(kOfRateLimits) : find(kOfLimit);
    }

    bool number(double value) {
        if (m_expected == Member::usedPercentage) {
            limit().usedPercentage = value;
        } else if (m_expected == Member::resetsAt) {
            limit().resetsAt = instantSince1970(value);
        } else if (m_expected == Member::observedAt) {
            m_members.observedAt = instantSince1970(value);
        } else {
            return m_expected == Member::other;
        }
        return true;
    }

    std::optional<StatusLineSnapshot::Limit>& limitSlot(Member which) {
        return which == Member::fiveHour ? m_members.rateLimits->fiveHour : m_members.rateLimits->sevenDay;
    }
    /// The one that is being read.
    StatusLineSnapshot::Limit& limit() { return *limitSlot(m_object); }

    Format m_format;
    Members m_members;
    Member m_expected = Member::document;  ///< whose value comes next
    Member m_object = Member::document;    ///< of which object the members are being read
    std::size_t m_skippedDepth = 0;        ///< how deep inside a member that is not looked for
};

std::optional<Members> readMembers(std::string_view text, Format format) {
    MemberReader reader(format);
    if (!nlohmann::json::sax_parse(text, &reader)) {
        return std::nullopt;
    }
    return reader.take();
}

bool hasPercentage(const std::optional<StatusLineSnapshot::Limit>& limit) {
    return limit && limit->usedPercentage;
}

template <typename T>
void addMember(nlohmann::json& object, const char* key, const std::optional<T>& value) {
    if (value) {
        object[key] = *value;
    }
}

std::optional<nlohmann::json> encode(const std::optional<StatusLineSnapshot::Limit>& limit) {
    if (!limit) {
        return std::nullopt;
    }
    auto object = nlohmann::json::object();
    addMember(object, "used_percentage", limit->usedPercentage);
    if (limit->resetsAt) {
        object["resets_at"] = secondsSince1970(*limit->resetsAt);
    }
    return object;
}

std::string encode(const StatusLineSnapshot& snapshot) {
    auto limits = nlohmann::json::object();
    addMember(limits, "five_hour", encode(snapshot.rateLimits.fiveHour));
    addMember(limits, "seven_day", encode(snapshot.rateLimits.sevenDay));
    auto object = nlohmann::json::object();
    object["observed_at"] = secondsSince1970(snapshot.observedAt);
    object["rate_limits"] = std::move(limits);
    addMember(object, "session_id", snapshot.sessionID);
    addMember(object, "version", snapshot.claudeVersion);
    return dumpJson(object);
}

}  // namespace

std::optional<StatusLineSnapshot> StatusLineSnapshot::from(std::string_view statusLineInput, Instant now) {
    auto input = readMembers(statusLineInput, Format::input);
    if (!input || !input->rateLimits ||
        !(hasPercentage(input->rateLimits->fiveHour) || hasPercentage(input->rateLimits->sevenDay))) {
        return std::nullopt;
    }
    return StatusLineSnapshot{.observedAt = now,
                              .rateLimits = *input->rateLimits,
                              .sessionID = std::move(input->sessionID),
                              .claudeVersion = std::move(input->version)};
}

std::vector<UsageWindow> StatusLineSnapshot::windows() const {
    std::vector<UsageWindow> windows;
    const auto add = [&](WindowKind kind, const std::optional<Limit>& limit) {
        if (!hasPercentage(limit)) {
            return;
        }
        windows.push_back(
            {.kind = std::move(kind),
             .usedPercent = *limit->usedPercentage,
             .resetsAt = limit->resetsAt && isPlausible(*limit->resetsAt) ? limit->resetsAt : std::nullopt,
             .observedAt = observedAt,
             .source = DataSource::statusLine});
    };
    add(WindowKind::session(), rateLimits.fiveHour);
    add(WindowKind::week(), rateLimits.sevenDay);
    return windows;
}

bool StatusLineSnapshot::write(const std::filesystem::path& file) const {
    createPrivateDirectories(file.parent_path());
    std::filesystem::path lockFile = file;
    const auto lock = FileLock::acquire(lockFile += ".lock", kPatience);
    if (!lock) {
        return false;
    }
    removeAbandonedTemporaries(file);
    const auto stored = read(file);
    // One from the future was written before the clock was set back, and would stand in the way until then.
    if (stored && stored->observedAt > observedAt && stored->observedAt <= systemNow()) {
        return false;
    }
    replaceFileUnflushed(file, encode(*this));
    return true;
}

std::optional<StatusLineSnapshot> StatusLineSnapshot::read(const std::filesystem::path& file) {
    const auto content = readFile(file, kLargestFile);
    auto members = content ? readMembers(*content, Format::file) : std::nullopt;
    if (!members || !members->observedAt || !isPlausible(*members->observedAt) || !members->rateLimits) {
        return std::nullopt;
    }
    return StatusLineSnapshot{.observedAt = *members->observedAt,
                              .rateLimits = *members->rateLimits,
                              .sessionID = std::move(members->sessionID),
                              .claudeVersion = std::move(members->version)};
}

void PrintTo(const StatusLineSnapshot& snapshot, std::ostream* out) {
    *out << encode(snapshot);
}

}  // namespace vorn
