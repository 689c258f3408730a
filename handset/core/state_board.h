// What each subject lets people see of itself: state/board, a line "subject<TAB>name<TAB>value" each.
// `vxk-handset show` prints all of it, so a subject that writes here is shown. It is for people: what a
// subject must find again is kept elsewhere (kept_state.h).
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace handset {

class Folder;

/// Names and values in the order in which they were first set.
using StateLines = std::vector<std::pair<std::string, std::string>>;

/// Reads what a handset in this folder, live or not, last showed: subject to lines.
std::map<std::string, StateLines> read_states(const std::string& folder);

class StateBoard {
public:
    explicit StateBoard(Folder& folder) : folder_(folder) {}

    /// Shows the value after the next flush(). Names and values hold no tabulators or line breaks.
    void set(const std::string& subject, const std::string& name, const std::string& value);
    void set(const std::string& subject, const std::string& name, uint64_t value) {
        set(subject, name, std::to_string(value));
    }

    /// Forgets all that a subject has shown.
    void clear(const std::string& subject);

    /// Called, as the wire log's is, before anything can be seen from outside.
    void flush();

private:
    Folder& folder_;
    std::map<std::string, StateLines> states_;
    bool changed_ = false;
};

}  // namespace handset
