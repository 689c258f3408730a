// The wire log from its records: as JSON, or a part of it as lines.
#include <cctype>
#include <cstdio>
#include <fstream>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "control.h"
#include "error.h"
#include "folder.h"
#include "json_line.h"
#include "packet_line.h"
#include "pcap.h"
#include "show.h"
#include "wire_record.h"

namespace handset {
namespace {

constexpr std::string_view kQmi = "qmi/";
constexpr std::string_view kSerialDiag = "dm";

std::optional<uint16_t> service_of(const std::string& where) {
    if (where.compare(0, kQmi.size(), kQmi) != 0)
        return std::nullopt;
    const std::string name = where.substr(kQmi.size());
    const messages::Service* known = messages::service(name);
    return known != nullptr ? known->id : static_cast<uint16_t>(strtoul(name.c_str(), nullptr, 10));
}

// A record with what only those before it tell.
struct Told {
    const WireRecord& record;
    unsigned command = 0;                     // of the process, 0: none
    std::optional<messages::QmiMessage> qmi;  // of a packet with a whole header
    std::optional<messages::DiagMessage> diag;
    std::optional<messages::Asked> asked;
    std::optional<int64_t> latency_us;
};

// Follows the requests and processes of a log.
class Story {
public:
    struct Process {
        std::string time;
        pid_t pid;
        std::string command;
    };

    Told tell(const WireRecord& record) {
        Told told{record, 0, {}, {}, {}, {}};
        if (record.where == "modem" && record.event == "boot") {
            open_.clear();
            numbers_.clear();
        }
        if (record.event == "connected" && record.pid != 0)
            meet(record);
        if (record.pid != 0 && numbers_.count(record.pid) > 0)
            told.command = numbers_[record.pid];
        if (!record.event.empty())
            return told;
        const auto service = service_of(record.where);
        if (service)
            tell_qmi(*service, told);
        else if (record.where == "diag" && !record.packet.empty())
            tell_diag(told);
        return told;
    }

    const std::vector<Process>& processes() const { return processes_; }

private:
    struct Open {
        int64_t time;
        std::optional<messages::Asked> asked;
    };
    using Key = std::tuple<std::string, uint32_t, uint32_t>;  // port, connection, transaction or op

    void meet(const WireRecord& record) {
        const auto known = numbers_.find(record.pid);
        if (known != numbers_.end() && processes_[known->second - 1].command == record.command)
            return;
        std::string time;
        WireStamp().append(time, record.time);
        processes_.push_back({time, record.pid, record.command});
        numbers_[record.pid] = static_cast<unsigned>(processes_.size());
    }

    void tell_qmi(uint16_t service, Told& told) {
        const auto packet = wire::decode_qmi(told.record.packet);
        if (!packet)
            return;
        told.qmi = messages::decode(service, *packet);
        const Key key{told.record.where, told.record.connection, packet->transaction};
        if (packet->flags == wire::kQmiRequest && told.record.direction == Direction::kToModem) {
            Open& open = open_[key] = {messages::microseconds(told.record.time), {}};
            if (told.qmi->extension)
                open.asked = messages::asked(*told.qmi->extension);
        } else if (packet->flags == wire::kQmiResponse) {
            answer(key, told);
        }
    }

    void tell_diag(Told& told) {
        told.diag = messages::decode_diag(told.record.direction == Direction::kToModem, told.record.packet);
        const Key key{told.record.where, told.record.connection, told.diag->number};
        if (told.diag->kind == messages::DiagMessage::kRequest)
            open_[key] = {messages::microseconds(told.record.time), {}};
        else if (told.diag->kind == messages::DiagMessage::kAnswer)
            answer(key, told);
    }

    void answer(const Key& key, Told& told) {
        const auto open = open_.find(key);
        if (open == open_.end())
            return;
        told.latency_us = messages::microseconds(told.record.time) - open->second.time;
        told.asked = open->second.asked;
        open_.erase(open);
    }

    std::map<Key, Open> open_;
    std::map<pid_t, unsigned> numbers_;
    std::vector<Process> processes_;
};

// A bare diag command or response, as the serial port has it.
void write_command(wire::View packet, messages::Sink& sink) {
    if (const char* code = messages::diag_code_name(packet))
        sink.text("code", code);
    sink.bytes("data", packet);
}

std::string text_line(const Told& told) {
    const WireRecord& record = told.record;
    std::string text;
    WireStamp().append(text, record.time);
    WireLine line(record.where, record.connection, record.direction, record.pid);
    const messages::Asked* asked = told.asked ? &*told.asked : nullptr;
    if (record.event == "unanswered") {
        const auto number = static_cast<uint8_t>(record.number);
        line.word("none").word(record.where == "diag"
                                   ? messages::label(messages::decode_diag(true, {&number, 1}).name, number)
                                   : "#" + std::to_string(record.number));
    } else if (!record.event.empty()) {
        line.word(record.event);
        if (record.event == "connected" && record.pid != 0)
            line.number("pid", record.pid);
        if (!record.command.empty())
            line.text("command", record.command);
        if (record.event == "malformed" || record.event == "unsent")
            line.unsigned_number("length", record.number);
    } else if (told.qmi) {
        write_packet(*told.qmi, asked, line);
    } else if (told.diag) {
        write_packet(*told.diag, line);
    } else if (service_of(record.where)) {
        write_malformed_packet(record.packet, line);
    } else if (record.where == kSerialDiag) {
        write_command(record.packet, line);
    } else {
        line.text("line", {reinterpret_cast<const char*>(record.packet.data()), record.packet.size()});
    }
    if (!record.fault.empty())
        line.fault(record.fault);
    return text + line.str();
}

messages::LineHead head_of(const Told& told) {
    const WireRecord& record = told.record;
    messages::LineHead head;
    if (told.qmi)
        head = messages::head_of(*told.qmi);
    else if (told.diag)
        head = messages::head_of(*told.diag);
    head.time = record.time;
    head.service = service_of(record.where);
    head.road = record.where.substr(0, record.where.find('/'));
    head.connection = record.connection;
    head.pid = record.pid;
    head.direction = record.direction == Direction::kToModem     ? "->"
                     : record.direction == Direction::kFromModem ? "<-"
                                                                 : "--";
    if (record.where == kSerialDiag)
        head.road = "diag";
    if ((record.where == "at" || record.where == kSerialDiag) && record.event.empty())
        head.kind = record.direction == Direction::kToModem ? "request" : "response";
    if (!record.event.empty())
        head.message = record.event;
    if (record.event == "unanswered" && head.road == "qmi")
        head.transaction = record.number;
    if (record.event == "unanswered" && head.road == "diag")
        head.message_id = record.number;
    return head;
}

std::string json_line(const Told& told) {
    const WireRecord& record = told.record;
    messages::JsonLine line(head_of(told));
    if (told.qmi)
        messages::describe(*told.qmi, told.asked ? &*told.asked : nullptr, line);
    else if (told.diag)
        messages::describe(*told.diag, line);
    else if (record.event.empty() && record.where == "at")
        line.text("line", {reinterpret_cast<const char*>(record.packet.data()), record.packet.size()});
    else if (record.event.empty() && record.where == kSerialDiag)
        write_command(record.packet, line);
    else if (record.event.empty() && !record.packet.empty())
        line.malformed();
    if (!record.command.empty())
        line.text("command", record.command);
    if (record.event == "malformed" || record.event == "unsent")
        line.unsigned_number("length", record.number);
    if (record.event == "closed")
        line.text("by", record.number != 0 ? "modem" : "client");
    return line.finish(record.packet, told.latency_us, record.fault);
}

// Hands every whole record on, with its place in the story.
class Records {
public:
    explicit Records(std::function<void(const Told&)> take) : take_(std::move(take)) {}

    void feed(std::string_view bytes) {
        pending_ += bytes;
        wire::View left(pending_.data(), pending_.size());
        while (const auto record = take_record(left))
            take_(story_.tell(*record));
        pending_.erase(0, pending_.size() - left.size);
    }
    const Story& story() const { return story_; }

private:
    std::string pending_;
    Story story_;
    std::function<void(const Told&)> take_;
};

// Whether a time is not before one as either form writes it, or its beginning.
bool is_since(const timespec& time, const std::string& since) {
    std::string stamp;
    if (since.size() > 4 && since[4] == '-')
        stamp = messages::rfc3339(time);
    else
        WireStamp().append(stamp, time);
    return stamp >= since;
}

void check_since(const std::string& since) {
    constexpr std::string_view kForms[] = {"00-00 00:00:00.000", "0000-00-00T00:00:00.000000+00:00"};
    for (const std::string_view form : kForms) {
        bool fits = since.size() <= form.size();
        for (size_t i = 0; fits && i < since.size(); ++i) {
            const bool digit = isdigit(static_cast<unsigned char>(since[i])) != 0;
            fits = form[i] == '0' ? digit : since[i] == form[i] || (form[i] == '+' && since[i] == '-');
        }
        if (fits)
            return;
    }
    throw Error(
        "--since takes a time as the log writes it, \"08-01 12:00:00.000\" or \"2026-08-01T12:00\", not \"" +
        since + "\"");
}

// The lines of the system log that a choice leaves.
void add_system_log(const std::string& folder, const LogChoice& choice, Pcap& pcap) {
    std::ifstream log(folder + "/log/system.log");
    const time_t now = time(nullptr);
    for (std::string line; std::getline(log, line);) {
        const auto written = system_line_time(line, now);
        int pid = 0;
        if (!written || (!choice.since.empty() && !is_since(*written, choice.since)) ||
            (choice.pid != 0 && (sscanf(line.c_str(), "%*s %*s %d", &pid) != 1 || pid != choice.pid)))
            continue;
        pcap.add_system_line(*written, line);
    }
}

// A handset that runs may have records that are not in the file yet.
std::string path_of(const std::string& folder) {
    try {
        if (running_handset(folder))
            ask_control(folder, {"flush"});
    } catch (const Error&) {
        // It is on its way up or down; then the file has what there is.
    }
    return folder + "/log/wire.raw";
}

}  // namespace

int show_records(const std::string& folder, const LogChoice& choice, bool follow) {
    check_since(choice.since);
    Pcap pcap;
    Records records([&choice, &pcap](const Told& told) {
        if ((choice.pid != 0 && told.record.pid != choice.pid) ||
            (choice.command != 0 && told.command != choice.command) ||
            (!choice.since.empty() && !is_since(told.record.time, choice.since)))
            return;
        if (!choice.pcap.empty())
            return pcap.add(told.record, told.qmi ? &*told.qmi : nullptr);
        printf("%s\n", (choice.json ? json_line(told) : text_line(told)).c_str());
    });
    read_growing_file(path_of(folder), follow, [&records](std::string_view bytes) {
        records.feed(bytes);
        flush_output();
    });
    if (choice.command > records.story().processes().size())
        throw Error("only " + std::to_string(records.story().processes().size()) +
                    " processes spoke to the modem; --commands lists them");
    if (!choice.pcap.empty()) {
        LogChoice lines = choice;
        if (choice.command != 0)
            lines.pid = records.story().processes()[choice.command - 1].pid;
        add_system_log(folder, lines, pcap);
        pcap.write(choice.pcap);
    }
    return 0;
}

int show_commands(const std::string& folder) {
    Records records([](const Told&) {});
    read_growing_file(path_of(folder), false, [&records](std::string_view bytes) { records.feed(bytes); });
    unsigned number = 0;
    for (const Story::Process& process : records.story().processes())
        printf("%4u  %s %d  %s\n", ++number, process.time.c_str(), static_cast<int>(process.pid),
               process.command.c_str());
    flush_output();
    return 0;
}

}  // namespace handset
