// One message a line, words separated by one blank:
//
//   MM-DD HH:MM:SS.mmm WHERE CONNECTION DIRECTION MESSAGE FIELD=VALUE ...
//
//   WHERE        qmi/<service>, diag, at, or modem for the handset itself
//   CONNECTION   the connection's number at its port, counted from 1 since the boot, or "-"; only those that
//                something passed on are counted
//   DIRECTION    -> to the modem, <- from the modem, -- something happened
//   MESSAGE      qmi: request, response or indication, then NAME(NUMBER) #TRANSACTION; diag: the op's or
//                event's name; for --: what happened
//   FIELD        a name stands once in a line; those of a list's items are LIST.INDEX.NAME
//   VALUE        a number, a text in double quotes (\" \\ \r \n \t \xNN), or bytes [01 02 FF]; a tail of
//                8 or more zero bytes is its count, [01 02 (+490 zero)]
//
// Decoded fields come first, then the bytes they were decoded from. What a fault of the profile did to an
// answer is its last field, fault="..."; an answer that never left is "<- none".
#include "wire_log.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <ctime>

#include "error.h"
#include "hex_text.h"

namespace handset {

WireLine::WireLine(std::string_view where, uint32_t connection, Direction direction, pid_t pid) {
    record_.where = where;
    record_.connection = connection;
    record_.direction = direction;
    record_.pid = pid;
    line_.reserve(2048);
    line_ += where;
    line_ += ' ';
    line_ += connection == 0 ? "-" : std::to_string(connection);
    line_ += direction == Direction::kToModem ? " ->" : direction == Direction::kFromModem ? " <-" : " --";
}

void WireLine::field(std::string_view name) {
    line_ += ' ';
    line_ += prefix_;
    line_ += name;
    line_ += '=';
}

WireLine& WireLine::word(std::string_view word) {
    line_ += ' ';
    line_ += word;
    return *this;
}

WireLine& WireLine::event(std::string_view what, uint32_t number) {
    record_.event = what;
    record_.number = number;
    return word(what);
}

WireLine& WireLine::unanswered(std::string_view request, uint32_t number) {
    record_.event = "unanswered";
    record_.number = number;
    return word("none").word(request);
}

WireLine& WireLine::command(std::string_view words) {
    record_.command = words;
    return text("command", words);
}

WireLine& WireLine::number(std::string_view name, int64_t value) {
    field(name);
    line_ += std::to_string(value);
    return *this;
}

WireLine& WireLine::unsigned_number(std::string_view name, uint64_t value) {
    field(name);
    line_ += std::to_string(value);
    return *this;
}

WireLine& WireLine::real(std::string_view name, float value) {
    char digits[32];
    field(name);
    line_.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
    return *this;
}

WireLine& WireLine::text(std::string_view name, std::string_view value) {
    field(name);
    append_quoted(line_, value);
    return *this;
}

WireLine& WireLine::bytes(std::string_view name, wire::View value) {
    field(name);
    line_ += '[';
    append_hex(line_, value);
    line_ += ']';
    return *this;
}

WireLine& WireLine::begin_item(std::string_view list, size_t index) {
    prefix_.assign(list).append(1, '.').append(std::to_string(index)).append(1, '.');
    return *this;
}

WireLine& WireLine::begin_group(std::string_view name) {
    prefix_.assign(name).append(1, '.');
    return *this;
}

WireLine& WireLine::end() {
    prefix_.clear();
    return *this;
}

WireLine& WireLine::fault(std::string_view name) {
    record_.fault = name;
    return text("fault", name);
}

WireLog::File::File(const std::string& path)
    : fd_(open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600)) {
    if (fd_ < 0)
        throw system_error("cannot write " + path, errno);
}

WireLog::File::~File() {
    flush();
    close(fd_);
}

void WireLog::File::flush() {
    size_t done = 0;
    while (done < pending.size()) {
        const ssize_t count = write(fd_, pending.data() + done, pending.size() - done);
        if (count < 0 && errno == EINTR)
            continue;
        // A full disk must not stop the modem; the lines are lost.
        if (count < 0)
            break;
        done += static_cast<size_t>(count);
    }
    pending.clear();
}

WireLog::WireLog(const std::string& folder) : text_(folder + "/wire.log"), raw_(folder + "/wire.raw") {}

WireLog::~WireLog() = default;

void WireStamp::append(std::string& out, const timespec& time) {
    if (time.tv_sec != second_) {
        tm local{};
        char text[32];
        localtime_r(&time.tv_sec, &local);
        strftime(text, sizeof text, "%m-%d %H:%M:%S", &local);
        text_ = text;
        second_ = time.tv_sec;
    }
    const int milliseconds = static_cast<int>(time.tv_nsec / 1'000'000) % 1000;
    const char fraction[] = {'.', static_cast<char>('0' + milliseconds / 100),
                             static_cast<char>('0' + milliseconds / 10 % 10),
                             static_cast<char>('0' + milliseconds % 10), ' '};
    out.append(text_).append(fraction, sizeof fraction);
}

void WireLog::add(const WireLine& line, wire::View packet) {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    stamp_.append(text_.pending, now);
    text_.pending.append(line.str()).append(1, '\n');
    append_record(raw_.pending, line.record_, now, packet);
}

void WireLog::flush() {
    constexpr size_t kMostRecords = 256 * 1024;
    text_.flush();
    if (raw_.pending.size() > kMostRecords)
        raw_.flush();
}

void WireLog::flush_records() {
    raw_.flush();
}

}  // namespace handset
