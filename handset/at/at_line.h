// What arrives at the AT terminal, character by character, cut into lines; and a command line cut into its
// commands, as V.250 has it. Nothing here knows what a command does.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace handset {

/// The characters that S-registers 3, 4 and 5 hold.
struct AtCharacters {
    uint8_t end = '\r';
    uint8_t feed = '\n';
    uint8_t erase = '\b';
};

struct AtLine {
    enum Kind {
        kCommand,  // `text` is to be carried out
        kRepeat,   // A/: the last one again
        kTooLong,  // the end of a line of which there is no room for more
        kNothing   // a line without AT, or one that was not ended as a command is
    };
    Kind kind = kNothing;
    std::string raw;   // as it arrived, its end included unless that is a line feed
    std::string text;  // from AT on, edited: without what was erased and without control characters
};

class AtLineReader {
public:
    static constexpr size_t kLineMax = 4096;

    /// Takes one character, and returns the line that it ends.
    std::optional<AtLine> take(char character, const AtCharacters& characters);

private:
    AtLine finish(AtLine::Kind kind);

    std::string raw_;
    bool too_long_ = false;
    bool after_end_ = false;     // a line feed there belongs to the line that has ended
    bool after_repeat_ = false;  // and so does the end of a line
};

struct AtCommand {
    enum Form {
        kAction,  // E1, +CSQ
        kSet,     // S0=1, +CREG=2
        kRead,    // S0?, +CREG?
        kTest     // +CREG=?
    };
    std::string name;  // in capitals: "E", "&F", "S0", "+CSQ"
    Form form = kAction;
    std::string value;  // what follows the name or "="
};

/// The line in capitals and without blanks, but for what stands in quotes.
std::string normal_at_text(std::string_view text);

class AtParser {
public:
    /// `body` is a command line in its normal form, without AT.
    explicit AtParser(std::string_view body) : left_(body) {}

    /// The next command, or nothing at the end and where the line is none; then ok() tells the two apart.
    std::optional<AtCommand> next();
    bool ok() const { return ok_; }

private:
    std::optional<AtCommand> next_basic();
    std::optional<AtCommand> next_extended();
    std::string_view take_while(bool (*wanted)(char));
    bool take(char character);
    bool at_end_of_command() const { return left_.empty() || left_.front() == ';'; }

    std::string_view left_;
    bool ok_ = true;
};

/// The values of a command, separated by commas.
class AtValues {
public:
    explicit AtValues(std::string_view text);

    size_t count() const { return values_.size(); }

    /// Whether a value stands at this place.
    bool has(size_t place) const { return place < values_.size() && !values_[place].text.empty(); }

    /// A number within bounds, or the default where none stands. Nothing when there is something else.
    std::optional<uint32_t> number(size_t place, uint32_t lowest, uint32_t highest,
                                   std::optional<uint32_t> absent = std::nullopt) const;

    /// A text, without its quotes; empty where none stands.
    std::string text(size_t place) const;

private:
    struct Value {
        std::string text;
        bool quoted = false;
    };
    std::vector<Value> values_;
};

}  // namespace handset
