#include "json_line.h"

#include <charconv>
#include <cmath>
#include <cstdio>

namespace messages {
namespace {

// Bytes that are not ASCII may be no UTF-8: each stands for the character of its number.
void append_text(std::string& out, std::string_view text) {
    out += '"';
    for (const char c : text) {
        if (c == '"' || c == '\\') {
            out += '\\';
            out += c;
        } else if (c >= ' ' && c <= '~') {
            out += c;
        } else {
            char escaped[8];
            snprintf(escaped, sizeof escaped, "\\u%04X", static_cast<unsigned>(static_cast<uint8_t>(c)));
            out += escaped;
        }
    }
    out += '"';
}

void append_bytes(std::string& out, wire::View bytes) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    const size_t start = out.size();
    out.resize(start + 2 + 3 * bytes.size, ' ');
    char* to = &out[start];
    *to++ = '"';
    for (size_t i = 0; i < bytes.size; ++i, to += 3) {
        to[0] = kDigits[bytes.data[i] >> 4];
        to[1] = kDigits[bytes.data[i] & 15];
    }
    if (bytes.size > 0)
        out.pop_back();
    out.back() = '"';
}

template <typename T>
std::string number_or_null(const std::optional<T>& number) {
    return number ? std::to_string(*number) : "null";
}

}  // namespace

std::string rfc3339(const timespec& time) {
    tm local{};
    char date[32];
    char zone[8];
    char text[64];
    localtime_r(&time.tv_sec, &local);
    strftime(date, sizeof date, "%Y-%m-%dT%H:%M:%S", &local);
    strftime(zone, sizeof zone, "%z", &local);  // +0200
    snprintf(text, sizeof text, "%s.%06d%.3s:%s", date, static_cast<int>(time.tv_nsec / 1000), zone,
             zone + 3);
    return text;
}

int64_t microseconds(const timespec& time) {
    return time.tv_sec * 1'000'000LL + time.tv_nsec / 1000;
}

LineHead head_of(const QmiMessage& message) {
    LineHead head;
    head.road = "qmi";
    head.service = message.service;
    head.kind = message.packet.flags == wire::kQmiRequest || message.packet.flags == wire::kQmiResponse ||
                        message.packet.flags == wire::kQmiIndication
                    ? message.kind()
                    : "event";
    if (message.row != nullptr)
        head.message = message.row->name;
    head.message_id = message.packet.message;
    head.transaction = message.packet.transaction;
    return head;
}

LineHead head_of(const DiagMessage& message) {
    constexpr const char* kKinds[] = {"request", "response", "indication"};
    LineHead head;
    head.road = "diag";
    head.kind = kKinds[message.kind];
    head.message = message.name;
    head.message_id = message.number;
    return head;
}

JsonLine::JsonLine(const LineHead& head) {
    const Service* known = head.service ? service(*head.service) : nullptr;
    line_.reserve(4096);
    line_ += R"({"v":1,"time":)";
    append_text(line_, rfc3339(head.time));
    line_ += R"(,"road":)";
    append_text(line_, head.road);
    line_ += R"(,"service":)";
    if (known != nullptr)
        append_text(line_, known->name);
    else
        line_ += "null";
    line_ += R"(,"service_id":)" + number_or_null(head.service);
    line_ += R"(,"connection":)" + (head.connection != 0 ? std::to_string(head.connection) : "null");
    line_ += R"(,"pid":)" + (head.pid != 0 ? std::to_string(head.pid) : "null");
    line_ += R"(,"direction":)";
    append_text(line_, head.direction);
    line_ += R"(,"kind":)";
    append_text(line_, head.kind);
    line_ += R"(,"message":)";
    if (head.message)
        append_text(line_, *head.message);
    else
        line_ += "null";
    line_ += R"(,"message_id":)" + number_or_null(head.message_id);
    line_ += R"(,"transaction":)" + number_or_null(head.transaction);
    line_ += R"(,"fields":{)";
}

void JsonLine::comma() {
    if (!first_)
        line_ += ',';
    first_ = false;
}

void JsonLine::key(std::string_view name) {
    comma();
    append_text(line_, name);
    line_ += ':';
}

JsonLine& JsonLine::number(std::string_view name, int64_t value) {
    key(name);
    line_ += std::to_string(value);
    return *this;
}

JsonLine& JsonLine::unsigned_number(std::string_view name, uint64_t value) {
    key(name);
    line_ += std::to_string(value);
    return *this;
}

JsonLine& JsonLine::real(std::string_view name, float value) {
    key(name);
    char text[32];
    const auto end = std::to_chars(text, text + sizeof text, value).ptr;
    line_ += std::isfinite(value) ? std::string_view(text, static_cast<size_t>(end - text)) : "null";
    return *this;
}

JsonLine& JsonLine::text(std::string_view name, std::string_view value) {
    key(name);
    append_text(line_, value);
    return *this;
}

JsonLine& JsonLine::bytes(std::string_view name, wire::View value) {
    key(name);
    append_bytes(line_, value);
    return *this;
}

JsonLine& JsonLine::inner_bytes(std::string_view name, wire::View value) {
    return bytes(name, value);
}

JsonLine& JsonLine::malformed() {
    key("malformed");
    line_ += "true";
    return *this;
}

JsonLine& JsonLine::list(std::string_view name, size_t) {
    key(name);
    line_ += '[';
    first_ = true;
    return *this;
}

JsonLine& JsonLine::begin_item(std::string_view, size_t) {
    comma();
    line_ += '{';
    first_ = true;
    return *this;
}

JsonLine& JsonLine::begin_group(std::string_view name) {
    key(name);
    line_ += '{';
    first_ = true;
    return *this;
}

JsonLine& JsonLine::end() {
    line_ += '}';
    first_ = false;
    return *this;
}

JsonLine& JsonLine::end_list() {
    line_ += ']';
    first_ = false;
    return *this;
}

std::string JsonLine::finish(wire::View packet, std::optional<int64_t> latency_us, std::string_view fault) {
    line_ += R"(},"bytes":)";
    append_bytes(line_, packet);
    line_ += R"(,"latency_us":)" + number_or_null(latency_us) + R"(,"fault":)";
    if (fault.empty())
        line_ += "null";
    else
        append_text(line_, fault);
    line_ += '}';
    return std::move(line_);
}

}  // namespace messages
