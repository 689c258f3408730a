// The diagnostic port: a terminal, "dm" in the handset's folder, that speaks diag as a USB serial port does,
// to one reader at a time. A session begins when somebody opens it: no logs are wanted then, and no frame is
// half there.
#pragma once

#include <vector>

#include "diag_frame.h"
#include "diag_masks.h"
#include "diag_profile.h"
#include "terminal.h"

namespace handset {

class Core;
class DiagResponder;

class DmPort {
public:
    /// Both outlive it.
    DmPort(Core& core, const DiagResponder& responder, const std::vector<DiagLog>& logs);
    DmPort(const DmPort&) = delete;
    DmPort& operator=(const DmPort&) = delete;

private:
    // One log of the profile.
    struct Stream {
        bool wanted = false;
        EventLoop::Token timer = 0;
    };

    void start_anew();
    void received(wire::View bytes);
    void carry_out(wire::View command);
    void send_response(const wire::Bytes& response);
    void choose_logs();
    void continue_log(size_t place, uint32_t left, std::chrono::milliseconds delay);
    void send_log(const DiagLog& log);

    Core& core_;
    const DiagResponder& responder_;
    const std::vector<DiagLog>& logs_;  // of the profile
    Terminal terminal_;
    DiagFrameReader reader_;
    DiagMasks masks_;
    std::vector<Stream> streams_;  // beside the profile's logs
    unsigned session_ = 0;
    size_t late_ = 0;  // responses that wait for their time
};

}  // namespace handset
