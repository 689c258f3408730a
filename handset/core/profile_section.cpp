#include "profile_section.h"

#include <nlohmann/json.hpp>
#include <set>

#include "hex_text.h"

namespace handset {

using Json = nlohmann::json;

// A JSON object with its place in the file, and the keys that were asked for.
struct Section::Node {
    const Json& json;
    const std::string& file;
    std::string place;
    std::set<std::string> known;

    Node(const Json& object, const std::string& name, std::string where)
        : json(object), file(name), place(std::move(where)) {}

    static std::string step(const std::string& key) {
        std::string escaped;
        for (const char c : key)
            escaped += c == '~' ? "~0" : c == '/' ? "~1" : std::string(1, c);
        return "/" + escaped;
    }

    std::string place_of(const std::string& key) const { return key.empty() ? place : place + step(key); }

    [[noreturn]] void refuse(const std::string& where, const std::string& why) const {
        std::string line = file + ": " + (where.empty() ? "/" : where) + ": " + why;
        for (char& c : line) {
            if (c == '\n' || c == '\r')
                c = ' ';
        }
        throw ProfileError(line);
    }

    [[noreturn]] void refuse_type(const std::string& where, const char* wanted, const Json& found) const {
        constexpr size_t kShown = 40;
        std::string text = found.dump(-1, ' ', true, Json::error_handler_t::replace);
        if (text.size() > kShown)
            text = text.substr(0, kShown) + "...";
        refuse(where, std::string("expected ") + wanted + ", found " + text);
    }

    std::string known_keys() const {
        std::string keys;
        for (const std::string& key : known)
            keys += (keys.empty() ? "\"" : ", \"") + key + "\"";
        return keys;
    }

    const Json* find(const char* key) {
        known.insert(key);
        const auto found = json.find(key);
        return found == json.end() ? nullptr : &*found;
    }

    /// A number, or nothing when it is not a whole number between the two.
    static std::optional<int64_t> as_signed(const Json& value, int64_t lowest, int64_t highest) {
        std::optional<int64_t> number;
        if (const auto natural = as_unsigned(value, 0, INT64_MAX))
            number = static_cast<int64_t>(*natural);
        else if (value.is_number_integer() && !value.is_number_unsigned())
            number = value.get<int64_t>();
        if (!number || *number < lowest || *number > highest)
            return std::nullopt;
        return number;
    }

    static std::optional<uint64_t> as_unsigned(const Json& value, uint64_t lowest, uint64_t highest) {
        std::optional<uint64_t> number;
        if (value.is_string())
            number = hexadecimal(value);
        else if (value.is_number_unsigned())
            number = value.get<uint64_t>();
        if (!number || *number < lowest || *number > highest)
            return std::nullopt;
        return number;
    }

    static std::optional<uint64_t> hexadecimal(const Json& value) {
        const auto& text = value.get_ref<const std::string&>();
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

    static void read_object(const Json& value, const std::string& file, const std::string& place,
                            const Read& read) {
        Node node(value, file, place);
        if (!value.is_object())
            node.refuse_type(place, "an object", value);
        Section section(node);
        read(section);
        for (const auto& entry : value.items()) {
            if (node.known.count(entry.key()) == 0)
                node.refuse(node.place_of(entry.key()), "unknown key; known here: " + node.known_keys());
        }
    }
};

namespace {

std::string whole_number_between(const std::string& lowest, const std::string& highest) {
    return "a whole number from " + lowest + " to " + highest;
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

bool Section::has(const char* key) const {
    return node_.json.contains(key);
}

bool Section::is_text(const char* key) const {
    return has(key) && node_.json.at(key).is_string();
}

void Section::accept(const char* key) {
    node_.find(key);
}

void Section::require(const char* key) const {
    if (!has(key))
        node_.refuse(node_.place, std::string("the key \"") + key + "\" is missing");
}

int64_t Section::signed_integer(const char* key, int64_t value, int64_t lowest, int64_t highest) {
    const Json* found = node_.find(key);
    if (found == nullptr)
        return value;
    const auto number = Node::as_signed(*found, lowest, highest);
    if (!number)
        node_.refuse_type(node_.place_of(key),
                          whole_number_between(std::to_string(lowest), std::to_string(highest)).c_str(),
                          *found);
    return *number;
}

uint64_t Section::unsigned_integer(const char* key, uint64_t value, uint64_t lowest, uint64_t highest) {
    const Json* found = node_.find(key);
    if (found == nullptr)
        return value;
    const auto number = Node::as_unsigned(*found, lowest, highest);
    if (!number)
        node_.refuse_type(node_.place_of(key),
                          whole_number_between(std::to_string(lowest), std::to_string(highest)).c_str(),
                          *found);
    return *number;
}

void Section::number(const char* key, double& value, double lowest, double highest) {
    const Json* found = node_.find(key);
    if (found == nullptr)
        return;
    const double number = found->is_number() ? found->get<double>() : highest + 1;
    if (!(number >= lowest && number <= highest))
        node_.refuse_type(node_.place_of(key),
                          ("a number from " + Json(lowest).dump() + " to " + Json(highest).dump()).c_str(),
                          *found);
    value = number;
}

void Section::boolean(const char* key, bool& value) {
    const Json* found = node_.find(key);
    if (found == nullptr)
        return;
    if (!found->is_boolean())
        node_.refuse_type(node_.place_of(key), "true or false", *found);
    value = found->get<bool>();
}

void Section::text(const char* key, std::string& value, size_t longest) {
    const Json* found = node_.find(key);
    if (found == nullptr)
        return;
    if (!found->is_string() || found->get_ref<const std::string&>().size() > longest)
        node_.refuse_type(node_.place_of(key),
                          ("a text of at most " + std::to_string(longest) + " characters").c_str(), *found);
    value = found->get<std::string>();
}

void Section::bytes(const char* key, wire::Bytes& value, size_t longest) {
    const Json* found = node_.find(key);
    if (found == nullptr)
        return;
    auto parsed = found->is_string() ? parse_hex(found->get_ref<const std::string&>()) : std::nullopt;
    if (!parsed || parsed->size() > longest)
        node_.refuse_type(
            node_.place_of(key),
            ("at most " + std::to_string(longest) + " bytes as hexadecimal pairs (\"01 02 FF\")").c_str(),
            *found);
    value = std::move(*parsed);
}

std::optional<size_t> Section::choice_index(const char* key, const std::vector<const char*>& names) {
    const Json* found = node_.find(key);
    if (found == nullptr)
        return std::nullopt;
    std::string wanted = names.size() == 1 ? "" : "one of ";
    for (size_t i = 0; i < names.size(); ++i) {
        if (found->is_string() && found->get_ref<const std::string&>() == names[i])
            return i;
        wanted += (i > 0 ? ", \"" : "\"") + std::string(names[i]) + "\"";
    }
    node_.refuse_type(node_.place_of(key), wanted.c_str(), *found);
}

void Section::named_integer(const char* key, std::optional<uint32_t>& value, uint32_t lowest,
                            uint32_t highest, const Named& names) {
    const Json* found = node_.find(key);
    if (found == nullptr)
        return;
    if (const auto number = Node::as_unsigned(*found, lowest, highest)) {
        value = static_cast<uint32_t>(*number);
        return;
    }
    std::string wanted = whole_number_between(std::to_string(lowest), std::to_string(highest));
    if (!found->is_string())
        node_.refuse_type(node_.place_of(key), wanted.c_str(), *found);
    wanted += " or one of ";
    for (const auto& entry : names) {
        if (found->is_string() && found->get_ref<const std::string&>() == entry.first) {
            value = entry.second;
            return;
        }
        wanted += (&entry == &names.front() ? "\"" : ", \"") + entry.first + "\"";
    }
    node_.refuse_type(node_.place_of(key), wanted.c_str(), *found);
}

void Section::object(const char* key, const Read& read) {
    const Json* found = node_.find(key);
    if (found != nullptr)
        Node::read_object(*found, node_.file, node_.place_of(key), read);
}

void Section::list(const char* key, size_t longest, const Read& read) {
    const Json* found = node_.find(key);
    if (found == nullptr)
        return;
    const std::string place = node_.place_of(key);
    if (!found->is_array() || found->size() > longest)
        node_.refuse_type(place, ("a list of at most " + std::to_string(longest) + " objects").c_str(),
                          *found);
    for (size_t i = 0; i < found->size(); ++i)
        Node::read_object((*found)[i], node_.file, place + "/" + std::to_string(i), read);
}

void Section::map(const char* key, const ReadNamed& read) {
    const Json* found = node_.find(key);
    if (found == nullptr)
        return;
    const std::string place = node_.place_of(key);
    if (!found->is_object())
        node_.refuse_type(place, "an object", *found);
    for (const auto& entry : found->items())
        Node::read_object(entry.value(), node_.file, place + Node::step(entry.key()),
                          [&](Section& section) { read(entry.key(), section); });
}

void Section::each(const ReadNamed& read) {
    for (const auto& entry : node_.json.items()) {
        node_.known.insert(entry.key());
        Node::read_object(entry.value(), node_.file, node_.place_of(entry.key()),
                          [&](Section& section) { read(entry.key(), section); });
    }
}

void Section::integers(const char* key, std::vector<uint64_t>& values, size_t longest, uint64_t highest) {
    const Json* found = node_.find(key);
    if (found == nullptr)
        return;
    const std::string place = node_.place_of(key);
    if (!found->is_array() || found->size() > longest)
        node_.refuse_type(place, ("a list of at most " + std::to_string(longest) + " numbers").c_str(),
                          *found);
    values.clear();
    for (size_t i = 0; i < found->size(); ++i) {
        const auto number = Node::as_unsigned((*found)[i], 0, highest);
        if (!number)
            node_.refuse_type(place + "/" + std::to_string(i),
                              whole_number_between("0", std::to_string(highest)).c_str(), (*found)[i]);
        values.push_back(*number);
    }
}

void Section::texts(const char* key, std::vector<std::string>& values, size_t longest) {
    const Json* found = node_.find(key);
    if (found == nullptr)
        return;
    const std::string place = node_.place_of(key);
    if (!found->is_array() || found->size() > longest)
        node_.refuse_type(place, ("a list of at most " + std::to_string(longest) + " texts").c_str(), *found);
    values.clear();
    for (size_t i = 0; i < found->size(); ++i) {
        if (!(*found)[i].is_string())
            node_.refuse_type(place + "/" + std::to_string(i), "a text", (*found)[i]);
        values.push_back((*found)[i].get<std::string>());
    }
}

void Section::texts_or_objects(const char* key, size_t longest,
                               const std::function<void(const std::string&)>& text, const Read& object) {
    const Json* found = node_.find(key);
    if (found == nullptr)
        return;
    const std::string place = node_.place_of(key);
    if (!found->is_array() || found->size() > longest)
        node_.refuse_type(
            place, ("a list of at most " + std::to_string(longest) + " texts and objects").c_str(), *found);
    for (size_t i = 0; i < found->size(); ++i) {
        const Json& entry = (*found)[i];
        const std::string entry_place = place + "/" + std::to_string(i);
        if (entry.is_string())
            text(entry.get<std::string>());
        else if (entry.is_object())
            Node::read_object(entry, node_.file, entry_place, object);
        else
            node_.refuse_type(entry_place, "a text or an object", entry);
    }
}

std::vector<std::string> Section::keys() const {
    std::vector<std::string> keys;
    for (const auto& entry : node_.json.items())
        keys.push_back(entry.key());
    return keys;
}

void Section::fail(const std::string& key, const std::string& why) const {
    node_.refuse(node_.place_of(key), why);
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
    const Section::Node root(json, name, "");
    if (!repeated.repeated.empty())
        root.refuse("", "the key \"" + repeated.repeated + "\" stands twice in one object");
    Section::Node::read_object(json, name, "", read);
}

}  // namespace handset
