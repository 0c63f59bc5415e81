#include "core/wording/connection_words.hpp"

#include <fmt/format.h>

#include "core/support/unicode/calendar.hpp"
#include "core/support/unicode/display_width.hpp"
#include "core/support/unicode/time_zone.hpp"
#include "core/wording/format.hpp"

namespace vorn::ConnectionWords {
namespace {

using StatusLineConnection::Connected;
using StatusLineConnection::Disconnected;

std::string shown(const std::filesystem::path& path) {
    return printable(path.string());
}

/// "2026-11-26 18:00" in the user's zone.
std::string dateOf(Instant instant) {
    const auto time = Calendar(currentTimeZone()).wallTime(instant);
    return time ? fmt::format("{:04}-{:02}-{:02} {:02}:{:02}", time->year, time->month, time->day, time->hour,
                              time->minute)
                : formatIso8601(instant);
}

/// "the backup of 2026-11-26 18:00 (/home/…)", "the record of the other Vorn in /home/…"
std::string source(const Provenance& provenance) {
    if (provenance.kind == Provenance::Kind::otherHome) {
        return "the record of the other Vorn in " + shown(provenance.file);
    }
    return "the backup" + (provenance.date ? " of " + dateOf(*provenance.date) : std::string()) + " (" +
           shown(provenance.file) + ")";
}

bool isFromElsewhere(const Provenance& provenance) {
    return provenance.kind == Provenance::Kind::otherHome || provenance.kind == Provenance::Kind::backup;
}

std::string lead(Connected::Kind kind) {
    switch (kind) {
        case Connected::Kind::again:
            return "Already connected; the relay was copied afresh.";
        case Connected::Kind::filtered:
            return "Already connected, with the relay's output passed through a command of your own, which stays; the "
                   "relay was copied afresh.";
        case Connected::Kind::reconnected:
            return "Reconnected.";
        case Connected::Kind::fresh:
            break;
    }
    return "Connected.";
}

std::string replacedText(const Connected& outcome) {
    return "The command that stood there is kept in " + shown(outcome.replacedIn) + ":\n  " +
           printable(outcome.replaced) + "\n";
}

std::string nameOf(const JSONValue& statusLine) {
    const std::string* command = commandOf(&statusLine);
    return printable(command != nullptr ? *command : statusLine.dump());
}

std::string emptyText(const Disconnected& outcome) {
    const bool isKnown = outcome.provenance.kind == Provenance::Kind::settings;
    if (outcome.kind == Disconnected::Kind::leftEmpty) {
        return "Disconnected. Claude Code has no status line, since you have taken it out.\n";
    }
    if (isKnown) {
        return "Disconnected. Claude Code has no status line, as before.\n";
    }
    if (isFromElsewhere(outcome.provenance)) {
        return "Disconnected. Claude Code has no status line, as " + source(outcome.provenance) + " says.\n";
    }
    return "Disconnected. Claude Code has no status line now; Vorn does not know whether you had one before.\n";
}

std::string copyText(const Disconnected& outcome) {
    if (outcome.copy.empty()) {
        return "";
    }
    if (!outcome.replaced.empty()) {
        return "The command around Vorn's relay is kept in " + shown(outcome.copy) + ":\n  " +
               printable(outcome.replaced) + "\n";
    }
    return "The status line that you had before Vorn was connected is kept in " + shown(outcome.copy) + "\n";
}

std::string refusal(const ConnectionRefused::Details& details) {
    switch (details.reason) {
        case ConnectionRefused::Reason::othersCommand:
            return "Claude Code's status line runs a command that mentions vorn-bridge and is not the one that Vorn "
                   "writes, so nothing was changed:\n  " +
                   printable(details.command) + "\nEither take vorn-bridge out of it, in " + shown(details.place) +
                   ", or run vornctl connect --replace: that keeps a copy of it and puts Vorn's relay in its place.";
        case ConnectionRefused::Reason::otherHome:
            return "The status line runs the relay of another Vorn, in " + shown(details.place) +
                   ", whose record of your own status line cannot be read, so nothing was changed. Use that Vorn "
                   "(VORN_HOME=" +
                   shown(details.place) +
                   "), or run vornctl connect --replace: that keeps a copy of the settings and puts this Vorn's relay "
                   "in its place.";
        case ConnectionRefused::Reason::strangersHome:
            break;
    }
    return notChangedAsRoot(details.place, details.owner);
}

}  // namespace

std::string downstream(const Connected& outcome) {
    const Provenance& provenance = outcome.provenance;
    if (outcome.downstream) {
        const std::string origin =
            isFromElsewhere(provenance) ? ", as " + source(provenance) + " has it" : std::string();
        return "then your own command" + origin + ":\n  " + printable(*outcome.downstream) + "\n";
    }
    if (provenance.kind == Provenance::Kind::settings) {
        return "and nothing after it, since there was no status line command in your settings.\n";
    }
    if (isFromElsewhere(provenance)) {
        return "and nothing after it, since " + source(provenance) + " has no command.\n";
    }
    return "and nothing after it, since Vorn knows of no command of your own.\n";
}

std::string connected(const Connected& outcome, const std::optional<Unheard>& unheard) {
    if (unheard) {
        return "Vorn's relay is in the settings, and is not heard all the same: " + reason(*unheard) +
               "\nOnce that is mended, Claude Code runs Vorn's relay after every turn, " + downstream(outcome) +
               (outcome.replaced.empty() ? "" : replacedText(outcome));
    }
    return lead(outcome.kind) + " After every turn Claude Code runs Vorn's relay, " + downstream(outcome) +
           (outcome.replaced.empty() ? "" : replacedText(outcome));
}

std::string disconnected(const Disconnected& outcome) {
    std::string text;
    if (!outcome.statusLine) {
        text = emptyText(outcome);
    } else if (outcome.kind == Disconnected::Kind::leftAlone) {
        text =
            "Disconnected. The status line that you have chosen since stays:\n  " + nameOf(*outcome.statusLine) + "\n";
    } else {
        const std::string origin =
            isFromElsewhere(outcome.provenance) ? ", as " + source(outcome.provenance) + " had it" : std::string();
        text = "Disconnected. Your own status line is in its place" + origin + ":\n  " + nameOf(*outcome.statusLine) +
               "\n";
    }
    text += copyText(outcome);
    return outcome.isSettingsFileGone ? text + "The settings file, which Vorn had made, was empty and is removed.\n"
                                      : text;
}

std::string remark(const Connected& outcome) {
    std::string text;
    if (outcome.kind != Connected::Kind::again && outcome.provenance.kind == Provenance::Kind::unknown &&
        !outcome.downstream) {
        text = "Vorn knows of no command of your own behind its relay. ";
    } else if (isFromElsewhere(outcome.provenance)) {
        text = (outcome.downstream ? "Your own command is taken from " : "No command of your own is in ") +
               source(outcome.provenance) + ". ";
    }
    if (!outcome.replaced.empty()) {
        text += "The command that stood there is kept in " + shown(outcome.replacedIn) + ".";
    }
    return text.ends_with(' ') ? text.substr(0, text.size() - 1) : text;
}

std::string remark(const Disconnected& outcome) {
    std::string text = disconnected(outcome);
    const bool isPlain = outcome.kind == Disconnected::Kind::restored && outcome.copy.empty() &&
                         (outcome.statusLine.has_value() || outcome.provenance.kind == Provenance::Kind::settings);
    if (isPlain) {
        return "";
    }
    text.pop_back();
    return text;
}

std::string problem(const IntegrationError& error) {
    if (const auto* refused = dynamic_cast<const ConnectionRefused*>(&error)) {
        return refusal(refused->details());
    }
    return printable(error.what());
}

std::string reason(const Unheard& unheard) {
    const std::string file = shown(unheard.file);
    switch (unheard.reason) {
        case Unheard::Reason::relayMissing:
            return "Claude Code runs " + file + ", which is not there. Connect again to put it back.";
        case Unheard::Reason::relayCannotRun:
            return file + " may not be executed. Connect again, or see to the rights of its directory and file system.";
        case Unheard::Reason::hooksDisabled:
            return "disableAllHooks is on in " + file + ", so Claude Code runs no status line. Turn it off there.";
        case Unheard::Reason::overridden:
            break;
    }
    return file + " has a status line of its own, which wins over yours" +
           (unheard.command.empty() ? "" : " (" + printable(unheard.command) + ")") +
           ". Where it counts, only taking it out of there helps.";
}

std::string silence(Instant since, Instant now) {
    return "Claude Code has been in use since " + Format::clock(since, now) +
           ", and no figures have come from the status line. That is so with claude -p and with an API key; otherwise "
           "start Claude Code anew, and connect again if that does not help.";
}

std::string othersCommand(const std::string& command) {
    return "Claude Code runs a command that mentions vorn-bridge and is not Vorn's own: " + printable(command);
}

std::string notChangedAsRoot(const std::filesystem::path& place, const std::string& owner) {
    return "You are root, and " + shown(place) + " belongs to " + printable(owner) +
           ", who could not use what root writes there, so nothing was changed. Run this as " + printable(owner) + ".";
}

std::string notStoredAsRoot(const std::filesystem::path& place, const std::string& owner) {
    return "You are root, and " + shown(place) + " belongs to " + printable(owner) +
           ": this is what is known there; Claude Code is not asked and nothing is stored.";
}

}  // namespace vorn::ConnectionWords
