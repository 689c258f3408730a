// What differs between the ways to a modem's diag interface.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "wire.h"

namespace seam {

/// Result and fields of an op's answer. What the other side left out reads as zero.
class DiagReply {
public:
    explicit DiagReply(wire::Bytes answer) : answer_(std::move(answer)), fields_(answer_) {
        fields_.u8();
        result_ = fields_.i32();
    }
    DiagReply(const DiagReply&) = delete;
    DiagReply& operator=(const DiagReply&) = delete;

    int result() const { return result_; }
    wire::Reader& fields() { return fields_; }

private:
    wire::Bytes answer_;
    wire::Reader fields_;
    int result_ = 0;
};

/// One open session. Ops and events are those of a handset's diag socket. Any thread.
class DiagLink {
public:
    /// Gets each event, on the link's own thread.
    using OnEvent = std::function<void(wire::Bytes&)>;

    virtual ~DiagLink() = default;

    /// One op. Null: the session is lost, or the other side has not answered in time.
    virtual std::unique_ptr<DiagReply> ask(uint8_t op, const wire::Writer& payload) = 0;

    /// True once the other side is gone or the link is closed.
    virtual bool has_ended() = 0;

    /// Waits for an event that is being delivered; none comes afterwards. Not from OnEvent.
    virtual void close() = 0;
};

class DiagRoad {
public:
    virtual ~DiagRoad() = default;

    /// Null: nobody is there, which standard error tells, or the session is refused.
    virtual std::shared_ptr<DiagLink> open(DiagLink::OnEvent on_event) = 0;
};

/// The diag socket of a handset's folder.
std::unique_ptr<DiagRoad> folder_diag(std::string folder);

/// The open diag router of the machine that the process runs on. It carries commands and responses of the
/// local processor and nothing else: there are no remote processors, and DCI is refused.
std::unique_ptr<DiagRoad> router_diag();

}  // namespace seam
