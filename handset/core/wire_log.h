// The wire log: what passed between the modem and the rest of the world. log/wire.log has it as lines for
// people to read and for scripts to search; their format is described in wire_log.cpp. log/wire.raw has the
// same as records, from which other forms are made (wire_record.h).
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>
#include <string_view>

#include "describe.h"
#include "wire.h"
#include "wire_record.h"

namespace handset {

/// One line, built field by field.
class WireLine : public messages::Sink {
public:
    /// `where` is the road, with the service behind a slash ("qmi/uim", "diag", "at", "modem"); connection 0
    /// is none.
    WireLine(std::string_view where, uint32_t connection, Direction direction, pid_t pid = 0);

    WireLine& word(std::string_view word);

    /// Something happened, and with it a number, if it has one (see wire_record.h).
    WireLine& event(std::string_view what, uint32_t number = 0);
    /// A request stays without an answer: "none", and which one, by its transaction or op.
    WireLine& unanswered(std::string_view request, uint32_t number);
    /// The process that has connected.
    WireLine& command(std::string_view words);
    WireLine& number(std::string_view name, int64_t value) override;
    WireLine& unsigned_number(std::string_view name, uint64_t value) override;
    WireLine& real(std::string_view name, float value) override;
    WireLine& text(std::string_view name, std::string_view value) override;
    WireLine& bytes(std::string_view name, wire::View value) override;
    WireLine& inner_bytes(std::string_view, wire::View) override { return *this; }
    WireLine& malformed() override { return word("malformed"); }
    WireLine& list(std::string_view name, size_t count) override { return unsigned_number(name, count); }
    WireLine& begin_item(std::string_view list, size_t index) override;
    WireLine& begin_group(std::string_view name) override;
    WireLine& end() override;
    WireLine& end_list() override { return *this; }

    /// What a fault of the profile did; to be told last.
    WireLine& fault(std::string_view name);

    const std::string& str() const { return line_; }

private:
    friend class WireLog;
    void field(std::string_view name);

    std::string line_;
    std::string prefix_;  // of the names in an item or a group, "entries.0."
    WireRecord record_;
};

/// The time at the front of a line, "MM-DD HH:MM:SS.mmm ".
class WireStamp {
public:
    void append(std::string& out, const timespec& time);

private:
    int64_t second_ = -1;
    std::string text_;
};

class WireLog {
public:
    /// Appends to the files in a folder; throws Error when they cannot be opened.
    explicit WireLog(const std::string& folder);
    ~WireLog();
    WireLog(const WireLog&) = delete;
    WireLog& operator=(const WireLog&) = delete;

    /// Stamps the line with the present time. It is in wire.log after the next flush(); in wire.raw, with the
    /// packet that it tells of, if it does, after the next flush_records().
    void add(const WireLine& line, wire::View packet = {});

    /// Called before anything can be seen from outside, an answer as well as a closed connection: whoever
    /// sees it finds it in the log.
    void flush();

    /// The records wait a moment, so that an exchange does not wait for them, but only so many.
    void flush_records();
    bool has_records() const { return !raw_.pending.empty(); }

private:
    class File {
    public:
        explicit File(const std::string& path);
        ~File();
        File(const File&) = delete;
        File& operator=(const File&) = delete;
        void flush();
        std::string pending;

    private:
        int fd_;
    };

    File text_;
    File raw_;
    WireStamp stamp_;
};

}  // namespace handset
