// What a person asks about a handset, live or not: it is all in its folder.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

namespace handset {

/// Prints services, state, properties and files of the handset in a folder. Returns 0; throws Error when
/// there is no handset's folder or standard output takes no more.
int show(const std::string& folder);

/// Prints the wire log or the system log, in colours when standard output is a terminal, and with `follow`
/// goes on until it is interrupted. Returns 0; throws Error when there is no log.
int show_log(const std::string& folder, bool system, bool follow);

/// Which exchanges of the records that are kept beside the wire log are printed, and how.
struct LogChoice {
    bool json = false;     // JSON lines instead of those of the wire log
    std::string since;     // a time as either form writes it, or its beginning; empty: all
    unsigned command = 0;  // the n-th process that spoke to the modem; 0: all
    int64_t pid = 0;       // 0: all
    std::string pcap;      // a capture file to write instead of lines
    bool any() const { return json || !since.empty() || command != 0 || pid != 0 || !pcap.empty(); }
};

/// Prints them, and with `follow` goes on; or writes a capture file of them and of the system log's lines.
/// Returns 0; throws Error.
int show_records(const std::string& folder, const LogChoice& choice, bool follow);

/// Prints the processes that spoke to the modem: number, time, pid and words. Returns 0; throws Error.
int show_commands(const std::string& folder);

/// Hands on a file from its beginning, piece by piece, and with `follow` what is appended until the program
/// is interrupted. Throws Error.
void read_growing_file(const std::string& path, bool follow,
                       const std::function<void(std::string_view)>& take);

/// Writes out what was printed. Throws Error when some of it is lost.
void flush_output();

}  // namespace handset
