// The verdict table: what success and failure of each command of the tool look like, what its answer holds,
// how it is proven, and what nobody can know from its output. The documents and the shells' completion are
// made of it too (packaging/commands.cpp).
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "values.h"

namespace check {

/// How another command proves that one did what it said.
enum class Proof {
    kNone,
    kFileHolds,   ///< the file or item of the command line holds the bytes of the command line
    kFileGone,    ///< it is not there
    kConfigured,  ///< the antenna configuration holds the values of the command line
    kUnset,       ///< it is not there
    kSameEid,     ///< the eUICC is there and tells the same EID
    kSwitched,    ///< the print switch's file is there, or not, as asked
};

/// The commands of one shape. Words are those behind "vxk": a number stands for itself, capitals
/// for any word, "..." behind a word for any number of further ones. Of the rows that fit a
/// command, the first counts.
struct Row {
    const char* words;
    const char* does;
    /// How manual and README go on from there. Words stand in backquotes; the values that a word can have
    /// follow it, "`word` 0 this, 1 that;" or "`word` 0 to 5;", and the shells complete it so. "(changes)":
    /// the handset stays changed.
    const char* more;
    std::vector<const char*>
        success;  ///< patterns of whole lines; none: success is the absence of a failure line
    std::vector<const char*> failure;
    Reader values;
    Proof proof = Proof::kNone;
    const char* unknown = "";  ///< what neither the tool nor its output can tell
};

const std::vector<Row>& verdict_table();

/// The row of a command; null when the tool has no such command or not with so many words.
const Row* find_row(const std::vector<std::string>& words);

/// The lines by which the tool says that it did not like its command line.
const std::vector<const char*>& refusals();

/// The command that reads back for a proof, in the table's words; empty for Proof::kNone.
std::string proof_words(const Row& row);

nlohmann::ordered_json row_json(const Row& row);

/// The table of docs/scripting.md.
std::string verdict_table_markdown();

/// The number that the tool makes of a word: decimal, up to the first character that is no digit.
int number_of(const std::string& word);

}  // namespace check
