// How a subject reads its part of the profile. A subject declares a structure with its defaults and one
// function that takes each key from a Section; a key that nobody took, a value of the wrong type or out of
// range ends the reading with one line that says where. Keys that are absent leave the default.
#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <limits>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <set>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "error.h"
#include "wire.h"

namespace handset {

/// One line: the file's name, the place in it, and what is wrong there.
class ProfileError : public Error {
public:
    using Error::Error;
};

class Section {
public:
    using Read = std::function<void(Section&)>;
    using ReadNamed = std::function<void(const std::string& name, Section&)>;
    template <typename E>
    using Choices = std::initializer_list<std::pair<const char*, E>>;

    bool has(const char* key) const;
    bool is_text(const char* key) const;

    /// A key that may stand here, whoever takes it.
    void accept(const char* key);

    /// Refuses the section when the key is absent.
    void require(const char* key) const;

    /// A whole number, or a text such as "0x1F".
    template <typename T>
    void integer(const char* key, T& value, T lowest = std::numeric_limits<T>::min(),
                 T highest = std::numeric_limits<T>::max()) {
        static_assert(std::is_integral_v<T> && !std::is_same_v<T, bool>);
        if constexpr (std::is_signed_v<T>)
            value = static_cast<T>(signed_integer(key, value, lowest, highest));
        else
            value = static_cast<T>(unsigned_integer(key, value, lowest, highest));
    }
    template <typename T>
    void integer(const char* key, std::optional<T>& value, T lowest = std::numeric_limits<T>::min(),
                 T highest = std::numeric_limits<T>::max()) {
        if (!has(key))
            return;
        T number{};
        integer(key, number, lowest, highest);
        value = number;
    }

    void number(const char* key, double& value, double lowest, double highest);
    void boolean(const char* key, bool& value);
    void text(const char* key, std::string& value, size_t longest);

    /// Bytes written as a text of hexadecimal pairs, "01 02 FF".
    void bytes(const char* key, wire::Bytes& value, size_t longest);

    /// One of a few texts.
    template <typename E>
    void choice(const char* key, E& value, Choices<E> choices) {
        std::vector<const char*> names;
        for (const auto& entry : choices)
            names.push_back(entry.first);
        if (const auto index = choice_index(key, names))
            value = (choices.begin() + *index)->second;
    }

    /// A whole number, or the name of one; an unknown name is refused with those that there are.
    using Named = std::vector<std::pair<std::string, uint32_t>>;
    void named_integer(const char* key, std::optional<uint32_t>& value, uint32_t lowest, uint32_t highest,
                       const Named& names);

    /// An object that is a part of its own.
    void object(const char* key, const Read& read);

    /// The same, of a structure that has its own read_profile().
    template <typename T>
    void section(const char* key, T& value) {
        object(key, [&value](Section& section) { read_profile(section, value); });
    }

    /// A list of objects, `read` once for each.
    void list(const char* key, size_t longest, const Read& read);

    /// The section itself as an object whose keys are names of the writer's choice and whose
    /// values are objects.
    void each(const ReadNamed& read);

    /// A list of whole numbers or texts; it replaces what was there.
    void integers(const char* key, std::vector<uint64_t>& values, size_t longest, uint64_t highest);
    void texts(const char* key, std::vector<std::string>& values, size_t longest);

    /// A list whose entries are texts or objects, `text` or `object` once for each.
    void texts_or_objects(const char* key, size_t longest,
                          const std::function<void(const std::string&)>& text, const Read& object);

    /// The names of all keys, for an object whose keys are of the writer's choice. Each must still be taken.
    std::vector<std::string> keys() const;

    /// Refuses the value of a key, or with an empty key the whole section.
    [[noreturn]] void fail(const std::string& key, const std::string& why) const;

private:
    using Json = nlohmann::json;
    using ReadEntry = std::function<void(const Json& entry, const std::string& place)>;
    friend void read_sections(const std::string& text, const std::string& name, const Read& read);

    /// Stands at `place` of a file; both outlive it.
    Section(const Json& object, const std::string& file, std::string place)
        : json_(object), file_(file), place_(std::move(place)) {}

    /// Takes a key: its value, or null.
    const Json* find(const char* key);
    std::string place_of(const std::string& key) const;
    [[noreturn]] void refuse(const std::string& place, const std::string& why) const;
    [[noreturn]] void refuse_value(const std::string& place, const std::string& wanted,
                                   const Json& found) const;

    void read_object(const Json& value, const std::string& place, const Read& read) const;
    void entries(const char* key, size_t longest, const char* kind, const ReadEntry& read);
    template <typename T>
    T whole_number(const char* key, T value, T lowest, T highest);
    int64_t signed_integer(const char* key, int64_t value, int64_t lowest, int64_t highest);
    uint64_t unsigned_integer(const char* key, uint64_t value, uint64_t lowest, uint64_t highest);
    std::optional<size_t> choice_index(const char* key, const std::vector<const char*>& names);

    const Json& json_;
    const std::string& file_;
    const std::string place_;
    std::set<std::string> known_;
};

/// Reads a whole profile; `name` is what the lines of a ProfileError call it.
void read_sections(const std::string& text, const std::string& name, const Section::Read& read);

}  // namespace handset
