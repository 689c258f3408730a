#include "file_access.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "wire_log.h"

namespace handset {
namespace {

enum Command : uint8_t { kNvRead = 1, kNvWrite, kNvDelete, kEfsRead, kEfsWrite, kEfsDelete };

constexpr const char* kCommandNames[] = {"",         "nv_read",   "nv_write",  "nv_delete",
                                         "efs_read", "efs_write", "efs_delete"};

constexpr size_t kPathMax = 71;
constexpr size_t kChunkSent = 414;

wire::Bytes answer(int32_t result, size_t total, wire::View chunk) {
    wire::Writer writer;
    writer.u32(0).u32(static_cast<uint32_t>(total)).u32(static_cast<uint32_t>(chunk.size)).u32(0);
    writer.i32(result).bytes(chunk);
    return writer.take();
}

}  // namespace

struct FileAccess::Request {
    uint8_t command = 0;
    uint8_t subscription = 0;
    uint16_t item = 0;
    std::string_view path;
    uint32_t total = 0;
    uint32_t chunk_size = 0;
    uint32_t offset = 0;
    wire::View data;  // all that follows the fixed part
    ModemFileName file;

    bool is_nv() const { return command <= kNvDelete; }

    static Request decode(wire::View payload, bool& complete) {
        wire::Reader reader(payload);
        Request request;
        request.command = reader.u8();
        request.subscription = reader.u8();
        request.item = reader.u16();
        const size_t path_size = reader.u8();
        const wire::View path = reader.bytes(kPathMax);
        if (path_size <= path.size && path_size > 0)
            request.path = {reinterpret_cast<const char*>(path.data), path_size};
        request.total = reader.u32();
        request.chunk_size = reader.u32();
        request.offset = reader.u32();
        request.data = reader.rest();
        complete = reader.ok() && request.command >= kNvRead && request.command <= kEfsDelete &&
                   (request.is_nv() || !request.path.empty());
        return request;
    }
};

wire::Bytes FileAccess::handle(wire::View payload) {
    bool complete = false;
    Request request = Request::decode(payload, complete);
    if (!complete)
        return file_result(kModemMalformed);
    request.file = request.is_nv() ? files_.nv_name(request.subscription, request.item)
                                   : files_.efs_name(request.subscription, request.path);
    if (request.file.result != kModemOk)
        return file_result(request.file.result);
    switch (request.command) {
        case kNvRead:
        case kEfsRead:
            return read(request);
        case kNvWrite:
        case kEfsWrite:
            return file_result(write(request));
        default:
            return file_result(files_.remove(request.file.name));
    }
}

wire::Bytes FileAccess::read(const Request& request) {
    if (request.offset == 0 || reading_.name != request.file.name) {
        reading_ = {request.file.name, {}};
        const ModemResult result = files_.read(request.file.name, reading_.content);
        if (result != kModemOk) {
            reading_ = {};
            return file_result(result);
        }
    }
    const wire::Bytes& content = reading_.content;
    if (request.offset > content.size())
        return file_result(kModemMalformed);
    const size_t chunk = std::min(content.size() - request.offset, kChunkSent);
    wire::Bytes payload = answer(kModemOk, content.size(), {content.data() + request.offset, chunk});
    if (request.offset + chunk == content.size())
        reading_ = {};
    return payload;
}

ModemResult FileAccess::write(const Request& request) {
    if (request.is_nv()) {
        if (request.total > request.data.size)
            return kModemMalformed;
        return files_.write(request.file.name, {request.data.data, request.total});
    }
    const ModemResult result = write_chunk(request);
    if (result != kModemOk)
        writing_ = {};
    return result;
}

ModemResult FileAccess::write_chunk(const Request& request) {
    if (request.offset == 0) {
        const ModemResult allowed = files_.may_write(request.file.name, request.total);
        if (allowed != kModemOk)
            return allowed;
        writing_ = {request.file.name, {}};
    }
    const bool continues = writing_.name == request.file.name && writing_.content.size() == request.offset;
    const bool fits = request.chunk_size <= request.data.size && request.offset <= request.total &&
                      request.chunk_size <= request.total - request.offset;
    const bool advances = request.chunk_size > 0 || request.total == 0;
    if (!continues || !fits || !advances)
        return kModemMalformed;
    writing_.content.insert(writing_.content.end(), request.data.data,
                            request.data.data + request.chunk_size);
    if (writing_.content.size() < request.total)
        return kModemOk;
    const Transfer whole = std::exchange(writing_, {});
    return files_.write(whole.name, whole.content);
}

uint8_t file_command(wire::View payload) {
    return payload.size > 0 ? payload.data[0] : 0;
}

void FileAccess::describe(wire::View payload, WireLine& line) {
    bool complete = false;
    const Request request = Request::decode(payload, complete);
    if (!complete) {
        line.word("malformed");
        return;
    }
    line.text("command", kCommandNames[request.command]).number("sub", request.subscription);
    if (request.is_nv())
        line.number("item", request.item);
    else
        line.text("path", request.path);
    if (request.command == kNvWrite)
        line.number("length", request.total);
    if (request.command == kEfsWrite)
        line.number("total", request.total)
            .number("offset", request.offset)
            .number("chunk", request.chunk_size);
    if (request.command == kEfsRead)
        line.number("offset", request.offset);
}

wire::Bytes file_result(int32_t result) {
    return answer(result, 0, {});
}

}  // namespace handset
