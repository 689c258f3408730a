#include "profile_section.h"

#include <nlohmann/json.hpp>

#include "hex_text.h"

namespace handset {
namespace {

using Json = nlohmann::json;

// A step of a JSON pointer.
std::string step(const std::string& key) {
    std::string escaped;
    for (const char c : key)
        escaped += c == '~' ? "~0" : c == '/' ? "~1" : std::string(1, c);
    return "/" + escaped;
}

std::optional<uint64_t> hexadecimal(const std::string& text) {
    if (text.size() < 3 || text.size() > 18 || text[0] != '0' || (text[1] != 'x' && text[1] != 'X'))
        return std::nullopt;
    uint64_t number = 0;
    for (size_t i = 2; i < text.size(); ++i) {
        const auto digit = parse_hex(std::string("0") + text[i]);
        if (!digit)
            return std::nullopt;
        number = number << 4 | digit->front();
    }
    return number;
}

// The value when it is a whole number between the two, or a text such as "0x1F" that is.
std::optional<uint64_t> whole_number_in(const Json& value, uint64_t lowest, uint64_t highest) {
    std::optional<uint64_t> number;
    if (value.is_string())
        number = hexadecimal(value.get_ref<const std::string&>());
    else if (value.is_number_unsigned())
        number = value.get<uint64_t>();
    return number && *number >= lowest && *number <= highest ? number : std::nullopt;
}

std::optional<int64_t> whole_number_in(const Json& value, int64_t lowest, int64_t highest) {
    std::optional<int64_t> number;
    if (const auto natural = whole_number_in(value, uint64_t{0}, uint64_t{INT64_MAX}))
        number = static_cast<int64_t>(*natural);
    else if (value.is_number_integer() && !value.is_number_unsigned())
        number = value.get<int64_t>();
    return number && *number >= lowest && *number <= highest ? number : std::nullopt;
}

template <typename T>
std::string whole_number_between(T lowest, T highest) {
    return "a whole number from " + std::to_string(lowest) + " to " + std::to_string(highest);
}

// The line and column of a byte, both counted from 1.
std::string place_of_byte(const std::string& text, size_t byte) {
    size_t line = 1;
    size_t column = 1;
    for (size_t i = 0; i + 1 < byte && i < text.size(); ++i) {
        ++column;
        if (text[i] == '\n') {
            ++line;
            column = 1;
        }
    }
    return std::to_string(line) + ":" + std::to_string(column);
}

// What the JSON library says, without its own prefix and with the control characters it quotes made visible.
std::string syntax_complaint(const Json::parse_error& error) {
    std::string what = error.what();
    const size_t prefix = what.find("syntax error");
    if (prefix != std::string::npos)
        what.erase(0, prefix);
    for (char& c : what) {
        if (static_cast<unsigned char>(c) < ' ')
            c = ' ';
    }
    return what;
}

// A key that stands twice in one object would silently win over the first.
class RepeatedKeys {
public:
    bool operator()(int, Json::parse_event_t event, Json& parsed) {
        if (event == Json::parse_event_t::object_start)
            open_.emplace_back();
        else if (event == Json::parse_event_t::object_end && !open_.empty())
            open_.pop_back();
        else if (event == Json::parse_event_t::key && !open_.empty() &&
                 !open_.back().insert(parsed.get<std::string>()).second && repeated.empty())
            repeated = parsed.get<std::string>();
        return true;
    }

    std::string repeated;

private:
    std::vector<std::set<std::string>> open_;
};

}  // namespace

const Json* Section::find(const char* key) {
    known_.insert(key);
    const auto found = json_.find(key);
    return found == json_.end() ? nullptr : &*found;
}

std::string Section::place_of(const std::string& key) const {
    return key.empty() ? place_ : place_ + step(key);
}

void Section::refuse(const std::string& place, const std::string& why) const {
    std::string line = file_ + ": " + (place.empty() ? "/" : place) + ": " + why;
    for (char& c : line) {
        if (c == '\n' || c == '\r')
            c = ' ';
    }
    throw ProfileError(line);
}

void Section::refuse_value(const std::string& place, const std::string& wanted, const Json& found) const {
    constexpr size_t kShown = 40;
    std::string text = found.dump(-1, ' ', true, Json::error_handler_t::replace);
    if (text.size() > kShown)
        text = text.substr(0, kShown) + "...";
    refuse(place, "expected " + wanted + ", found " + text);
}

void Section::read_object(const Json& value, const std::string& place, const Read& read) const {
    if (!value.is_object())
        refuse_value(place, "an object", value);
    Section section(value, file_, place);
    read(section);
    for (const auto& entry : value.items()) {
        if (section.known_.count(entry.key()) != 0)
            continue;
        std::string known;
        for (const std::string& key : section.known_)
            known += (known.empty() ? "\"" : ", \"") + key + "\"";
        refuse(section.place_of(entry.key()), "unknown key; known here: " + known);
    }
}

// Reads the entries of a list, of which there may be so many.
void Section::entries(const char* key, size_t longest, const char* kind, const ReadEntry& read) {
    const Json* found = find(key);
    if (found == nullptr)
        return;
    const std::string place = place_of(key);
    if (!found->is_array() || found->size() > longest)
        refuse_value(place, "a list of at most " + std::to_string(longest) + " " + kind, *found);
    size_t index = 0;
    for (const Json& entry : *found)
        read(entry, place + "/" + std::to_string(index++));
}

bool Section::has(const char* key) const {
    return json_.contains(key);
}

bool Section::is_text(const char* key) const {
    return has(key) && json_.at(key).is_string();
}

void Section::accept(const char* key) {
    find(key);
}

void Section::require(const char* key) const {
    if (!has(key))
        refuse(place_, std::string("the key \"") + key + "\" is missing");
}

template <typename T>
T Section::whole_number(const char* key, T value, T lowest, T highest) {
    const Json* found = find(key);
    if (found == nullptr)
        return value;
    const auto number = whole_number_in(*found, lowest, highest);
    if (!number)
        refuse_value(place_of(key), whole_number_between(lowest, highest), *found);
    return *number;
}

int64_t Section::signed_integer(const char* key, int64_t value, int64_t lowest, int64_t highest) {
    return whole_number(key, value, lowest, highest);
}

uint64_t Section::unsigned_integer(const char* key, uint64_t value, uint64_t lowest, uint64_t highest) {
    return whole_number(key, value, lowest, highest);
}

void Section::number(const char* key, double& value, double lowest, double highest) {
    if (const Json* found = find(key)) {
        const double number = found->is_number() ? found->get<double>() : highest + 1;
        if (!(number >= lowest && number <= highest))
            refuse_value(place_of(key),
                         "a number from " + Json(lowest).dump() + " to " + Json(highest).dump(), *found);
        value = number;
    }
}

void Section::boolean(const char* key, bool& value) {
    if (const Json* found = find(key)) {
        if (!found->is_boolean())
            refuse_value(place_of(key), "true or false", *found);
        value = found->get<bool>();
    }
}

void Section::text(const char* key, std::string& value, size_t longest) {
    if (const Json* found = find(key)) {
        if (!found->is_string() || found->get_ref<const std::string&>().size() > longest)
            refuse_value(place_of(key), "a text of at most " + std::to_string(longest) + " characters",
                         *found);
        value = found->get<std::string>();
    }
}

void Section::bytes(const char* key, wire::Bytes& value, size_t longest) {
    if (const Json* found = find(key)) {
        auto parsed = found->is_string() ? parse_hex(found->get_ref<const std::string&>()) : std::nullopt;
        if (!parsed || parsed->size() > longest)
            refuse_value(place_of(key),
                         "at most " + std::to_string(longest) + " bytes as hexadecimal pairs (\"01 02 FF\")",
                         *found);
        value = std::move(*parsed);
    }
}

std::optional<size_t> Section::choice_index(const char* key, const std::vector<const char*>& names) {
    const Json* found = find(key);
    if (found == nullptr)
        return std::nullopt;
    std::string wanted = names.size() == 1 ? "" : "one of ";
    for (size_t i = 0; i < names.size(); ++i) {
        if (found->is_string() && found->get_ref<const std::string&>() == names[i])
            return i;
        wanted += (i > 0 ? ", \"" : "\"") + std::string(names[i]) + "\"";
    }
    refuse_value(place_of(key), wanted, *found);
}

void Section::named_integer(const char* key, std::optional<uint32_t>& value, uint32_t lowest,
                            uint32_t highest, const Named& names) {
    const Json* found = find(key);
    if (found == nullptr || !found->is_string() ||
        whole_number_in(*found, uint64_t{lowest}, uint64_t{highest}))
        return integer(key, value, lowest, highest);
    std::string wanted = whole_number_between(lowest, highest) + " or one of ";
    for (const auto& entry : names) {
        if (found->get_ref<const std::string&>() == entry.first) {
            value = entry.second;
            return;
        }
        wanted += (&entry == &names.front() ? "\"" : ", \"") + entry.first + "\"";
    }
    refuse_value(place_of(key), wanted, *found);
}

void Section::object(const char* key, const Read& read) {
    if (const Json* found = find(key))
        read_object(*found, place_of(key), read);
}

void Section::list(const char* key, size_t longest, const Read& read) {
    entries(key, longest, "objects",
            [&](const Json& entry, const std::string& place) { read_object(entry, place, read); });
}

void Section::each(const ReadNamed& read) {
    for (const auto& entry : json_.items()) {
        known_.insert(entry.key());
        read_object(entry.value(), place_ + step(entry.key()),
                    [&](Section& section) { read(entry.key(), section); });
    }
}

void Section::integers(const char* key, std::vector<uint64_t>& values, size_t longest, uint64_t highest) {
    if (has(key))
        values.clear();
    entries(key, longest, "numbers", [&](const Json& entry, const std::string& place) {
        const auto number = whole_number_in(entry, uint64_t{0}, highest);
        if (!number)
            refuse_value(place, whole_number_between(uint64_t{0}, highest), entry);
        values.push_back(*number);
    });
}

void Section::texts(const char* key, std::vector<std::string>& values, size_t longest) {
    if (has(key))
        values.clear();
    entries(key, longest, "texts", [&](const Json& entry, const std::string& place) {
        if (!entry.is_string())
            refuse_value(place, "a text", entry);
        values.push_back(entry.get<std::string>());
    });
}

void Section::texts_or_objects(const char* key, size_t longest,
                               const std::function<void(const std::string&)>& text, const Read& object) {
    entries(key, longest, "texts and objects", [&](const Json& entry, const std::string& place) {
        if (entry.is_string())
            text(entry.get<std::string>());
        else if (entry.is_object())
            read_object(entry, place, object);
        else
            refuse_value(place, "a text or an object", entry);
    });
}

std::vector<std::string> Section::keys() const {
    std::vector<std::string> keys;
    for (const auto& entry : json_.items())
        keys.push_back(entry.key());
    return keys;
}

void Section::fail(const std::string& key, const std::string& why) const {
    refuse(place_of(key), why);
}

void read_sections(const std::string& text, const std::string& name, const Section::Read& read) {
    RepeatedKeys repeated;
    Json json;
    try {
        json = Json::parse(text, [&repeated](int depth, Json::parse_event_t event, Json& parsed) {
            return repeated(depth, event, parsed);
        });
    } catch (const Json::parse_error& error) {
        throw ProfileError(name + ":" + place_of_byte(text, error.byte) + ": " + syntax_complaint(error));
    } catch (const Json::exception& error) {
        throw ProfileError(name + ": " + error.what());
    }
    const Section root(json, name, "");
    if (!repeated.repeated.empty())
        root.refuse("", "the key \"" + repeated.repeated + "\" stands twice in one object");
    root.read_object(json, "", read);
}

}  // namespace handset
