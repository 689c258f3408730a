#include "at_channel.h"

#include <utility>

#include "core.h"
#include "profile_section.h"

namespace handset {

AtChannel::AtChannel(Core& core, const AtProfile& profile, SimAccess& sim)
    : core_(core),
      answers_(profile.answers),
      terminal_(core, "at", [this](wire::View bytes) { received(bytes); }),
      device_(terminal_.device().empty() ? "" : core.folder().at("at")),
      network_(
          commands_, sim, [this] { core_.restart_modem(); },
          [this](const std::string& line) { reports_.push_back(line); }) {
    add_basic_commands(commands_, settings_);
    add_identity_commands(commands_);
    add_card_commands(commands_, sim);
    core_.on_restart([this] {
        settings_ = AtSettings();
        network_.start_anew();
    });
    for (const AtUnsolicited& unsolicited : profile.unsolicited)
        send_unsolicited(unsolicited, unsolicited.count, unsolicited.after);
    core_.control().add_setting("at", [this](Section& section) {
        auto changed = answers_;
        read_answers(section, changed);
        return [this, changed] { answers_ = changed; };
    });
    core_.state().clear("at");
    core_.state().set("at", "terminal", terminal_.device().empty() ? "none" : terminal_.device());
    core_.state().set("at", "device", device_.obstacle().empty() ? device_.name() : "none");
    core_.state().set("at", "lines", lines_);
}

std::string AtChannel::notice() const {
    if (device_.obstacle().empty())
        return "";
    return "cannot link " + device_.name() + ", so vxk 8 does not reach this handset, only " +
           core_.folder().at("at") + " does: " + device_.obstacle();
}

void AtChannel::received(wire::View bytes) {
    waiting_.append(reinterpret_cast<const char*>(bytes.data), bytes.size);
    // A terminal that echoes by itself would bring the echo back as the next command.
    const bool may_echo = !terminal_.echoes();
    std::string echo;
    size_t taken = 0;
    while (taken < waiting_.size() && !busy_) {
        const char character = waiting_[taken++];
        if (may_echo && settings_.echo && core_.is_up())
            echo += character;
        auto line = reader_.take(character, settings_.characters());
        if (!line)
            continue;
        send(std::exchange(echo, ""));
        finish(*line);
    }
    waiting_.erase(0, taken);
    send(echo);
}

void AtChannel::finish(const AtLine& line) {
    core_.state().set("at", "lines", ++lines_);
    log(Direction::kToModem, line.raw);
    // A modem that is away neither hears nor answers.
    if (!core_.is_up())
        return;
    if (line.kind == AtLine::kTooLong)
        return answer(AtOutcome::final("ERROR"));
    if (line.kind == AtLine::kCommand)
        last_ = normal_at_text(line.text);
    if (line.kind == AtLine::kCommand || (line.kind == AtLine::kRepeat && !last_.empty()))
        carry_out(last_);
}

void AtChannel::carry_out(const std::string& text) {
    for (const AtAnswer& wanted : answers_) {
        if (wanted.command != text)
            continue;
        if (wanted.delay.count() == 0)
            return answer(wanted);
        busy_ = true;
        terminal_.pause();
        core_.loop().after(wanted.delay, [this, wanted] {
            answer(wanted);
            busy_ = false;
            received({});
            if (!busy_)
                terminal_.resume();
            core_.flush();
        });
        return;
    }
    answer(run(text.substr(2)));
}

AtOutcome AtChannel::run(const std::string& text) {
    AtParser parser(text);
    while (const auto command = parser.next()) {
        AtOutcome outcome = commands_.run(*command);
        if (!outcome.lines.empty())
            send_lines(outcome.lines);
        if (!outcome.ok())
            return outcome;
    }
    return parser.ok() ? AtOutcome() : AtOutcome::final("ERROR");
}

void AtChannel::answer(const AtAnswer& answer) {
    if (answer.silent || !core_.is_up())
        return;
    if (!answer.lines.empty())
        send_lines(answer.lines);
    send_result(result_text(answer.result, settings_));
}

void AtChannel::answer(const AtOutcome& outcome) {
    send_result(result_text(outcome, settings_));
    for (const std::string& line : std::exchange(reports_, {}))
        report(line);
}

void AtChannel::send_unsolicited(const AtUnsolicited& unsolicited, uint32_t left,
                                 std::chrono::milliseconds delay) {
    core_.loop().after(delay, [this, &unsolicited, left] {
        if (core_.is_up())
            report(unsolicited.line);
        core_.flush();
        if (left > 1)
            send_unsolicited(unsolicited, left - 1, unsolicited.every);
    });
}

void AtChannel::report(const std::string& line) {
    send_result(result_text(line, settings_));
}

// Information text: an empty line before it when results are in words.
void AtChannel::send_lines(const std::vector<std::string>& lines) {
    const AtCharacters characters = settings_.characters();
    const std::string end{static_cast<char>(characters.end), static_cast<char>(characters.feed)};
    std::string text = settings_.verbose ? end : "";
    for (const std::string& line : lines) {
        log(Direction::kFromModem, line);
        text += line + end;
    }
    send(text);
}

void AtChannel::send_result(const std::string& result) {
    if (settings_.quiet)
        return;
    const AtCharacters characters = settings_.characters();
    const std::string end(1, static_cast<char>(characters.end));
    const std::string feed(1, static_cast<char>(characters.feed));
    log(Direction::kFromModem, result);
    send(settings_.verbose ? end + feed + result + end + feed : result + end);
}

void AtChannel::send(const std::string& text) {
    if (text.empty())
        return;
    core_.flush();
    terminal_.send({text.data(), text.size()});
}

void AtChannel::log(Direction direction, const std::string& line) {
    core_.wire_log().add(WireLine("at", 0, direction).text("line", line), {line.data(), line.size()});
}

}  // namespace handset
