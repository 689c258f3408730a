// What a subject must find again after the handset was switched off or killed: kept/<subject>, a line a
// value. What a person is shown is made from it and goes to the state board; nobody reads it back from there.
#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace handset {

class Folder;

class KeptState {
public:
    /// Reads what an earlier handset in this folder has kept for the subject.
    KeptState(Folder& folder, std::string subject);

    /// The value of a key; `otherwise` when nothing was kept or it is no number. A key has no blanks or
    /// line breaks.
    uint64_t number(const std::string& key, uint64_t otherwise) const;

    /// Keep the value: when this returns it is on the disk, or all is as it was and a line says why.
    void keep(const std::string& key, uint64_t number);

    /// A number that is kept as one more than it was.
    uint64_t count_up(const std::string& key);

private:
    Folder& folder_;
    const std::string subject_;
    std::map<std::string, std::string> lines_;  // by key
};

}  // namespace handset
