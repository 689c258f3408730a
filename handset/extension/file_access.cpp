#include "file_access.h"

#include <algorithm>
#include <utility>

namespace handset {
namespace {

constexpr size_t kChunkSent = 414;

wire::Bytes answer(int32_t result, size_t total, wire::View chunk) {
    wire::Writer writer;
    writer.u32(0).u32(static_cast<uint32_t>(total)).u32(static_cast<uint32_t>(chunk.size)).u32(0);
    writer.i32(result).bytes(chunk);
    return writer.take();
}

}  // namespace

wire::Bytes FileAccess::handle(const Request& request) {
    if (!request.whole)
        return file_result(kModemMalformed);
    const ModemFileName file = request.is_nv() ? files_.nv_name(request.subscription, request.item)
                                               : files_.efs_name(request.subscription, request.path);
    if (file.result != kModemOk)
        return file_result(file.result);
    switch (request.command) {
        case Request::kNvRead:
        case Request::kEfsRead:
            return read(request, file.name);
        case Request::kNvWrite:
        case Request::kEfsWrite:
            return file_result(write(request, file.name));
        default:
            return file_result(files_.remove(file.name));
    }
}

wire::Bytes FileAccess::read(const Request& request, const std::string& name) {
    if (request.offset == 0 || reading_.name != name) {
        reading_ = {name, {}};
        const ModemResult result = files_.read(name, reading_.content);
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

ModemResult FileAccess::write(const Request& request, const std::string& name) {
    if (request.is_nv()) {
        if (request.total > request.data.size)
            return kModemMalformed;
        return files_.write(name, {request.data.data, request.total});
    }
    const ModemResult result = write_chunk(request, name);
    if (result != kModemOk)
        writing_ = {};
    return result;
}

ModemResult FileAccess::write_chunk(const Request& request, const std::string& name) {
    if (request.offset == 0) {
        const ModemResult allowed = files_.may_write(name, request.total);
        if (allowed != kModemOk)
            return allowed;
        writing_ = {name, {}};
    }
    const bool continues = writing_.name == name && writing_.content.size() == request.offset;
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

wire::Bytes file_result(int32_t result) {
    return answer(result, 0, {});
}

}  // namespace handset
