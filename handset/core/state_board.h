// What each subject lets people see of itself, state/<subject>: lines "name<TAB>value". `vxk-handset show`
// prints every file that stands there, so a subject that writes here is shown. The files outlive the handset:
// a subject may take up again what it left.
#pragma once

#include <map>
#include <optional>
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
    explicit StateBoard(Folder& folder);

    /// Shows the value at once. Names and values hold no tabulators or line breaks.
    void set(const std::string& subject, const std::string& name, const std::string& value);
    void set(const std::string& subject, const std::string& name, uint64_t value) {
        set(subject, name, std::to_string(value));
    }

    /// The last value, also of an earlier handset in this folder.
    std::optional<std::string> get(const std::string& subject, const std::string& name) const;

    /// Forgets all that a subject has shown.
    void clear(const std::string& subject);

private:
    Folder& folder_;
    std::map<std::string, StateLines> states_;
};

}  // namespace handset
