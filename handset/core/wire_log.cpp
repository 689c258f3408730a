// One message a line, words separated by one blank:
//
//   MM-DD HH:MM:SS.mmm WHERE CONNECTION DIRECTION MESSAGE FIELD=VALUE ...
//
//   WHERE        qmi/<service>, diag, at, or modem for the handset itself
//   CONNECTION   the connection's number at its socket, counted from 1 since the boot, or "-"; only those
//   that
//                something passed on are counted
//   DIRECTION    -> to the modem, <- from the modem, -- something happened
//   MESSAGE      qmi: request, response or indication, then NAME(NUMBER) #TRANSACTION; diag: the op's or
//   event's name;
//                for --: what happened
//   VALUE        a decimal number, a text in double quotes (\" \\ \r \n \t \xNN), or bytes [01 02 FF]; a tail
//   of 8 or
//                more zero bytes is its count, [01 02 (+490 zero)]
//
// Decoded fields come first, then the bytes they were decoded from. What a fault of the profile did to an
// answer is its last field, fault="..."; an answer that never left is "<- none". For example:
//
//   08-01 12:00:00.123 qmi/extension 1 -> request send(2) #1 id=2 data_len=512 command="efs_read" sub=0
//   path="/x" ... 08-01 12:00:00.123 qmi/extension 1 <- response send(2) #1 id=0 data_len=23 data=[00 00 00
//   00 03 ... 01 02 FF]
#include "wire_log.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <ctime>

#include "error.h"
#include "hex_text.h"

namespace handset {

WireLine::WireLine(std::string_view where, uint64_t connection, Direction direction) {
    line_.reserve(2048);
    line_ += where;
    line_ += ' ';
    line_ += connection == 0 ? "-" : std::to_string(connection);
    line_ += direction == Direction::kToModem ? " ->" : direction == Direction::kFromModem ? " <-" : " --";
}

void WireLine::field(std::string_view name) {
    line_ += ' ';
    line_ += name;
    line_ += '=';
}

WireLine& WireLine::word(std::string_view word) {
    line_ += ' ';
    line_ += word;
    return *this;
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

WireLog::WireLog(const std::string& path)
    : fd_(open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600)) {
    if (fd_ < 0)
        throw system_error("cannot write " + path, errno);
}

WireLog::~WireLog() {
    flush();
    close(fd_);
}

void WireLog::add(const WireLine& line) {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    if (now.tv_sec != stamp_second_) {
        tm local{};
        char text[32];
        localtime_r(&now.tv_sec, &local);
        strftime(text, sizeof text, "%m-%d %H:%M:%S", &local);
        stamp_ = text;
        stamp_second_ = now.tv_sec;
    }
    char fraction[8];
    snprintf(fraction, sizeof fraction, ".%03d ", static_cast<int>(now.tv_nsec / 1'000'000) % 1000);
    pending_.append(stamp_).append(fraction).append(line.str()).append(1, '\n');
}

void WireLog::flush() {
    size_t done = 0;
    while (done < pending_.size()) {
        const ssize_t count = write(fd_, pending_.data() + done, pending_.size() - done);
        if (count < 0 && errno == EINTR)
            continue;
        // A full disk must not stop the modem; the lines are lost.
        if (count < 0)
            break;
        done += static_cast<size_t>(count);
    }
    pending_.clear();
}

}  // namespace handset
