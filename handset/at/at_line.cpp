#include "at_line.h"

#include <algorithm>
#include <utility>

namespace handset {
namespace {

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

bool is_letter(char c) {
    return c >= 'A' && c <= 'Z';
}

bool is_name(char c) {
    return is_letter(c) || is_digit(c) || std::string_view("!%-./:_").find(c) != std::string_view::npos;
}

// What begins the name of an extended command; + is the standard's, the others are makers' own.
bool begins_extended(char c) {
    return std::string_view("+$%^*#!@_").find(c) != std::string_view::npos;
}

char capital(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

std::string edited(std::string_view raw, char erase) {
    std::string text;
    for (const char c : raw) {
        if (c != erase && static_cast<uint8_t>(c) >= ' ')
            text += c;
        else if (c == erase && !text.empty())
            text.pop_back();
    }
    return text;
}

std::string from_prefix(const std::string& text) {
    const size_t place = std::min(text.find("AT"), text.find("at"));
    return place == std::string::npos ? "" : text.substr(place);
}

}  // namespace

std::optional<AtLine> AtLineReader::take(char character, const AtCharacters& characters) {
    const auto code = static_cast<uint8_t>(character);
    const bool after_end = std::exchange(after_end_, false);
    const bool after_repeat = std::exchange(after_repeat_, false);
    if (after_end && code == characters.feed)
        return std::nullopt;
    if (code == characters.end) {
        after_end_ = true;
        if (after_repeat)
            return std::nullopt;
        AtLine line;
        line.text = from_prefix(edited(raw_, static_cast<char>(characters.erase)));
        raw_ += character;
        line.kind = too_long_ ? AtLine::kTooLong : line.text.empty() ? AtLine::kNothing : AtLine::kCommand;
        line.raw = std::exchange(raw_, "");
        too_long_ = false;
        return line;
    }
    if (character == '\n') {
        too_long_ = false;
        return finish(AtLine::kNothing);
    }
    raw_ += character;
    if (raw_ == "A/" || raw_ == "a/") {
        after_repeat_ = true;
        return finish(AtLine::kRepeat);
    }
    if (raw_.size() < kLineMax)
        return std::nullopt;
    too_long_ = true;
    return finish(AtLine::kNothing);
}

AtLine AtLineReader::finish(AtLine::Kind kind) {
    return {kind, std::exchange(raw_, ""), ""};
}

std::string normal_at_text(std::string_view text) {
    std::string normal;
    bool quoted = false;
    for (const char c : text) {
        if (c == '"')
            quoted = !quoted;
        if (quoted || c != ' ')
            normal += quoted ? c : capital(c);
    }
    return normal;
}

std::optional<AtCommand> AtParser::next() {
    while (take(';')) {
    }
    if (left_.empty() || !ok_)
        return std::nullopt;
    auto command = begins_extended(left_.front()) ? next_extended() : next_basic();
    ok_ = command.has_value();
    return command;
}

std::optional<AtCommand> AtParser::next_basic() {
    AtCommand command;
    if (take('&'))
        command.name = "&";
    if (left_.empty() || !is_letter(left_.front()))
        return std::nullopt;
    command.name += left_.front();
    left_.remove_prefix(1);
    if (command.name == "D") {
        command.value = std::exchange(left_, {});
        return command;
    }
    if (command.name != "S") {
        command.value = take_while(is_digit);
        return command;
    }
    const std::string_view number = take_while(is_digit);
    command.name += number;
    command.form = take('?') ? AtCommand::kRead : AtCommand::kSet;
    if (number.empty() || (command.form == AtCommand::kSet && !take('=')))
        return std::nullopt;
    command.value = take_while(is_digit);
    return command;
}

std::optional<AtCommand> AtParser::next_extended() {
    AtCommand command;
    command.name = left_.front();
    left_.remove_prefix(1);
    command.name += take_while(is_name);
    if (take('?')) {
        command.form = AtCommand::kRead;
    } else if (take('=')) {
        command.form = AtCommand::kSet;
        bool quoted = false;
        size_t size = 0;
        for (; size < left_.size() && (quoted || left_[size] != ';'); ++size) {
            if (left_[size] == '"')
                quoted = !quoted;
        }
        command.value = left_.substr(0, size);
        left_.remove_prefix(size);
        if (command.value == "?") {
            command.form = AtCommand::kTest;
            command.value.clear();
        }
        if (quoted)
            return std::nullopt;
    }
    if (command.name.size() < 2 || !at_end_of_command())
        return std::nullopt;
    return command;
}

std::string_view AtParser::take_while(bool (*wanted)(char)) {
    const auto end = std::find_if_not(left_.begin(), left_.end(), wanted);
    const std::string_view taken = left_.substr(0, static_cast<size_t>(end - left_.begin()));
    left_.remove_prefix(taken.size());
    return taken;
}

bool AtParser::take(char character) {
    if (left_.empty() || left_.front() != character)
        return false;
    left_.remove_prefix(1);
    return true;
}

AtValues::AtValues(std::string_view text) {
    bool quoted = false;
    values_.emplace_back();
    for (const char c : text) {
        Value& value = values_.back();
        if (c == '"') {
            quoted = !quoted;
            value.quoted = true;
        } else if (c == ',' && !quoted) {
            values_.emplace_back();
        } else {
            value.text += c;
        }
    }
}

std::optional<uint32_t> AtValues::number(size_t place, uint32_t lowest, uint32_t highest,
                                         std::optional<uint32_t> absent) const {
    if (!has(place))
        return absent;
    const Value& value = values_[place];
    if (value.quoted || value.text.size() > 9 || !std::all_of(value.text.begin(), value.text.end(), is_digit))
        return std::nullopt;
    const auto number = static_cast<uint32_t>(std::stoul(value.text));
    return number >= lowest && number <= highest ? std::optional(number) : std::nullopt;
}

std::string AtValues::text(size_t place) const {
    return place < values_.size() ? values_[place].text : "";
}

}  // namespace handset
