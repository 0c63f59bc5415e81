#include <algorithm>
#include <functional>
#include <iostream>
#include <memory>

#include <fmt/format.h>
#include <unistd.h>

#include "cli/argument_checks.hpp"
#include "cli/commands.hpp"
#include "cli/terminal.hpp"
#include "core/data/instance_request.hpp"
#include "core/data/probe_record.hpp"
#include "core/data/reset_plan_store.hpp"
#include "core/data/usage_state.hpp"
#include "core/data/vorn_paths.hpp"
#include "core/support/home_owner.hpp"
#include "core/support/json.hpp"
#include "core/support/local_socket.hpp"
#include "core/support/text.hpp"
#include "core/support/unicode/calendar.hpp"
#include "core/support/unicode/display_width.hpp"
#include "core/support/unicode/time_zone.hpp"
#include "core/support/uuid.hpp"
#include "core/usage_command/usage_command_parser.hpp"
#include "core/wording/connection_words.hpp"
#include "core/wording/plan_text.hpp"

namespace vorn::cli {
namespace {

/// Longer than the application waits: a person at a terminal would rather wait than type again.
constexpr std::chrono::milliseconds kPatience{2000};
/// For the application, which may be busy: what it is told is in the files as well.
constexpr std::chrono::milliseconds kAnswerPatience{500};
constexpr std::size_t kNarrowestNote = 8;  // cells

/// A change that cannot be made as asked; `what()` says why and what to do.
class PlanError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct PlanArguments {
    std::string when;
    PlannedReset::Scope scope = PlannedReset::Scope::all;
    std::string note;
    std::string which;
    std::int64_t banked = 0;
    bool json = false;
    std::optional<Instant> now;

    [[nodiscard]] Instant moment() const { return now.value_or(systemNow()); }
};

Choices<PlannedReset::Scope> scopes() {
    Choices<PlannedReset::Scope> choices;
    for (const PlannedReset::Scope scope : PlannedReset::allScopes) {
        choices.emplace_back(rawValue(scope), scope);
    }
    return choices;
}

ResetPlan edit(Instant now, const std::function<void(ResetPlan&)>& change) {
    return ResetPlanStore(VornPaths::resetPlan())
        .edit(
            [&](ResetPlan& plan) {
                change(plan);
                plan = plan.pruned(now);
            },
            kPatience);
}

/// "2026-11-26 18:00" in the user's zone; in UTC beyond what a calendar knows.
std::string localTime(Instant instant) {
    const auto time = Calendar(currentTimeZone()).wallTime(instant);
    return time ? fmt::format("{:04}-{:02}-{:02} {:02}:{:02}", time->year, time->month, time->day, time->hour,
                              time->minute)
                : formatIso8601(instant);
}

void print(const ResetPlan& plan, Instant now) {
    const Terminal terminal = describeTerminal(STDOUT_FILENO);
    if (plan.planned.empty()) {
        std::cout << Format::nothingPlanned() << "\n";
    }
    for (std::size_t i = 0; i < plan.planned.size(); ++i) {
        const PlannedReset& reset = plan.planned[i];
        const std::string lead =
            fmt::format("{:>3}  {}  {}  ", i + 1, localTime(reset.date), fitted(label(reset.scope), 13));
        const std::size_t room = std::max(terminal.width, displayWidth(lead) + kNarrowestNote) - displayWidth(lead);
        std::cout << lead << (terminal.interactive ? elide(reset.note, room) : printable(reset.note)) << "\n";
        if (reset.date <= now) {
            std::cout << paint(terminal, Ink::faint,
                               "     " + Format::plannedWhen(reset, now) + "; dropped a day after its date")
                      << "\n";
        }
    }
    std::cout << Format::banked(plan.banked) << "\n";
}

void list(const PlanArguments& arguments) {
    const Instant now = arguments.moment();
    const ResetPlan plan = ResetPlanStore(VornPaths::resetPlan()).load().pruned(now);
    if (arguments.json) {
        std::cout << dumpJson(encode(plan, DateCoding::iso8601), true) << "\n";
        return;
    }
    print(plan, now);
}

Instant momentIn(const std::string& text, Instant now) {
    auto moment = parseIso8601(text, Fraction::optional);
    if (!moment) {
        moment = UsageCommandParser::parseResetTime(text, now);
    }
    if (!moment) {
        throw PlanError("cannot read \"" + text + "\" as a time; write 2026-11-26T18:00:00Z, \"Nov 26, 6pm\" or 18:00");
    }
    if (*moment <= now) {
        throw PlanError(localTime(*moment) + " has passed; a planned reset lies in the future");
    }
    return *moment;
}

void add(const PlanArguments& arguments) {
    const Instant now = arguments.moment();
    const PlannedReset reset{
        .id = randomUuid(), .date = momentIn(arguments.when, now), .scope = arguments.scope, .note = arguments.note};
    print(edit(now, [&](ResetPlan& plan) { plan.planned.push_back(reset); }), now);
}

/// The entry with that number in the list, or whose identifier begins so.
std::vector<PlannedReset>::const_iterator find(const ResetPlan& plan, const std::string& which) {
    const std::string wanted = asciiUpper(which);
    for (auto entry = plan.planned.begin(); entry != plan.planned.end(); ++entry) {
        const auto number = std::to_string(entry - plan.planned.begin() + 1);
        if (which == number || (which.size() >= 8 && entry->id.starts_with(wanted))) {
            return entry;
        }
    }
    throw PlanError("there is no planned reset " + which + "; vornctl plan list shows the numbers");
}

void removeEntry(const PlanArguments& arguments) {
    const Instant now = arguments.moment();
    print(edit(now,
               [&](ResetPlan& plan) {
                   plan = plan.pruned(now);  // the numbers are those of the list
                   plan.planned.erase(find(plan, arguments.which));
               }),
          now);
}

void bank(const PlanArguments& arguments) {
    const Instant now = arguments.moment();
    print(edit(now, [&](ResetPlan& plan) { plan.banked = arguments.banked; }), now);
}

/// The next large fall of the limits it covers is then taken at face value.
void expectResets(PlannedReset::Scope scope) {
    const auto announce = [scope](ProbeRecord& record) {
        std::set<WindowKind> kinds = {WindowKind::session(), WindowKind::week()};
        for (const UsageWindow& reading : record.readings) {
            kinds.insert(reading.kind);
        }
        for (const WindowKind& kind : kinds) {
            if (PlannedReset{.scope = scope}.covers(kind)) {
                record.expectedResets.insert(kind);
            }
        }
    };
    ProbeRecordStore(VornPaths::probeRecord()).edit(announce, kPatience);
}

/// One that is running reads the plan and the announcement again; without one there is nobody to tell.
void tellApplication(PlannedReset::Scope scope) {
    if (const auto socket = findLocalSocket(VornPaths::root())) {
        sendRequest(*socket, encode(InstanceRequest{.kind = InstanceRequest::Kind::redeemed, .scope = scope}),
                    kAnswerPatience);
    }
}

void redeem(const PlanArguments& arguments) {
    const Instant now = arguments.moment();
    expectResets(arguments.scope);
    const ResetPlan plan =
        edit(now, [](ResetPlan& edited) { edited.banked = std::max<std::int64_t>(0, edited.banked - 1); });
    tellApplication(arguments.scope);
    std::cout << "After redeeming in Claude's Settings → Usage → Resets: Vorn takes the drop at face value instead of "
                 "treating it as a stale reading.\n";
    print(plan, now);
}

int guarded(const PlanArguments& arguments, void (*action)(const PlanArguments&)) {
    try {
        if (const auto owner = strangersHome(VornPaths::root()); owner && action != list) {
            throw PlanError(ConnectionWords::notChangedAsRoot(VornPaths::root(), *owner));
        }
        action(arguments);
        return kDone;
    } catch (const std::filesystem::filesystem_error& error) {
        std::cerr << "vornctl: cannot change the plan: " << printable(error.path1().string()) << ": "
                  << error.code().message() << "\n";
        return kFailed;
    } catch (const std::runtime_error& error) {
        std::cerr << "vornctl: " << printable(error.what()) << "\n";
        return kFailed;
    }
}

CLI::App* addAction(CLI::App& plan, const char* name, const char* description,
                    const std::shared_ptr<PlanArguments>& arguments, CommandContext& context,
                    void (*action)(const PlanArguments&)) {
    CLI::App* command = plan.add_subcommand(name, description);
    command->callback([arguments, &context, action] { context.exitStatus = guarded(*arguments, action); });
    return command;
}

}  // namespace

void addPlanCommand(CLI::App& app, CommandContext& context) {
    auto arguments = std::make_shared<PlanArguments>();
    CLI::App* plan = app.add_subcommand("plan", "Resets that you expect ahead of schedule, or hold and can redeem");
    plan->require_subcommand(1);

    auto* adding = addAction(*plan, "add", "Plan for a reset ahead of schedule", arguments, context, add);
    adding->add_option("when", arguments->when, "2026-11-26T18:00:00Z, \"Nov 26, 6pm (Europe/Berlin)\" or 18:00")
        ->type_name("")
        ->required();
    addChoice(*adding, "--scope", arguments->scope, scopes(), "What it resets: all, session or week")
        ->type_name("SCOPE");
    adding->add_option("--note", arguments->note, "A text of your own")->type_name("TEXT");

    auto* removing = addAction(*plan, "remove", "Remove a planned reset", arguments, context, removeEntry);
    removing->add_option("which", arguments->which, "Its number in the list, or its identifier")
        ->type_name("")
        ->required();

    auto* listing = addAction(*plan, "list", "Show the plan", arguments, context, list);
    listing->add_flag("--json", arguments->json, "Print the plan as JSON");
    addNowOption(*listing, arguments->now);

    auto* banking = addAction(*plan, "bank", "Note how many resets you hold", arguments, context, bank);
    banking->add_option("count", arguments->banked, "Resets you've been given and can redeem later")
        ->type_name("")
        ->required()
        ->check(CLI::Range(std::int64_t{0}, std::int64_t{1000000}).description(""));

    auto* redeeming =
        addAction(*plan, "redeem", "Tell Vorn that you redeem a banked reset now, so that it believes the drop",
                  arguments, context, redeem);
    addChoice(*redeeming, "--scope", arguments->scope, scopes(), "What it resets: all, session or week")
        ->type_name("SCOPE");
}

}  // namespace vorn::cli
