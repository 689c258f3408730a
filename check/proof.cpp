#include "proof.h"

#include <cstdlib>
#include <sstream>

namespace check {
namespace {

// What a command sends at most, and what the modem says of a file that is not there.
constexpr size_t kBytesMax = 365;
constexpr size_t kGpioMax = 50;
constexpr int kNoSuchFile = -2;

struct PrintSwitch {
    const char* path;
    const char* bytes;
};

PrintSwitch print_switch(const std::vector<std::string>& words) {
    switch (number_of(words[1])) {
        case 4:
            return {"/kolvo/kolvo_print_mask", "1F 00 00 00"};
        case 5:
            return {"/nv/item_files/modem/kelvra/qmi_print_flag", "01"};
        default:
            return {"/nv/item_files/modem/kelvra/rf_print_mask", "0F 00 00 00"};
    }
}

void put_number(unsigned long long value, int width, std::vector<unsigned char>& bytes) {
    for (int i = 0; i < width; ++i)
        bytes.push_back(static_cast<unsigned char>(value >> (8 * i)));
}

// The bytes that a write carries: words behind the place, cut to 8 bits.
std::string written_bytes(const std::vector<std::string>& words) {
    std::vector<unsigned char> bytes;
    for (size_t i = 4; i < words.size() && bytes.size() < kBytesMax; ++i)
        bytes.push_back(static_cast<unsigned char>(number_of(words[i])));
    return hex_text(bytes);
}

// The values of an antenna configuration. Where the modem puts them in its file is its own affair; that they
// stand there one behind the other is not.
std::string configured_bytes(const std::vector<std::string>& words) {
    std::vector<unsigned char> bytes;
    if (number_of(words[1]) == 0) {
        for (size_t i = 2; i < words.size() && i < 2 + kGpioMax; ++i)
            put_number(static_cast<unsigned>(number_of(words[i])), 4, bytes);
    } else {
        put_number(static_cast<unsigned>(number_of(words[2])), 4, bytes);
        put_number(static_cast<unsigned>(number_of(words[3])), 4, bytes);
        put_number(strtoull(words[4].c_str(), nullptr, 0), 8, bytes);
    }
    return hex_text(bytes);
}

std::string text_of(const Judgement& judgement, const char* name) {
    const auto found = judgement.values.find(name);
    return found == judgement.values.end() ? std::string() : found->get<std::string>();
}

std::string holds(const Judgement& read, const std::string& wanted, bool whole) {
    if (read.verdict != Verdict::kSuccess)
        return "reading back failed: " + read.reason;
    const std::string bytes = text_of(read, "bytes");
    const bool there = whole ? bytes == wanted : bytes.find(wanted) != std::string::npos;
    return there ? std::string() : "read back: " + (bytes.empty() ? "nothing" : bytes);
}

std::string gone(const Judgement& read) {
    if (read.verdict == Verdict::kSuccess)
        return "it is still there: " + text_of(read, "bytes");
    if (read.verdict == Verdict::kFailure && read.modem_result == kNoSuchFile)
        return {};
    return "reading back failed: " + read.reason;
}

}  // namespace

std::vector<std::string> proof_command(const Row& row, const std::vector<std::string>& words) {
    std::vector<std::string> command;
    std::istringstream shape(proof_words(row));
    for (std::string word; shape >> word;) {
        if (row.proof == Proof::kSwitched && word == "PATH")
            word = print_switch(words).path;
        else if (word == "SUB")
            word = words[2];
        else if (word == "NV" || word == "PATH")
            word = words[3];
        command.push_back(word);
    }
    return command;
}

std::string proof_complaint(const Row& row, const std::vector<std::string>& words, const Judgement& written,
                            const Judgement& read) {
    switch (row.proof) {
        case Proof::kNone:
            return {};
        case Proof::kFileHolds:
            return holds(read, written_bytes(words), true);
        case Proof::kConfigured:
            return holds(read, configured_bytes(words), false);
        case Proof::kFileGone:
        case Proof::kUnset:
            return gone(read);
        case Proof::kSameEid:
            if (read.verdict != Verdict::kSuccess)
                return "reading back failed: " + read.reason;
            return text_of(read, "eid") == text_of(written, "eid") ? ""
                                                                   : "read back: " + text_of(read, "eid");
        case Proof::kSwitched:
            return number_of(words[2]) == 1 ? holds(read, print_switch(words).bytes, true) : gone(read);
    }
    return {};
}

}  // namespace check
