// Common requests, request id 4 of the extension service: small commands to the modem, told apart by form and
// code. A subject that answers one registers a handler; a code that nobody registered succeeds with no value.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <utility>

#include "extension.h"
#include "modem_files.h"
#include "wire.h"

namespace handset {

using messages::CommonForm;
using messages::CommonRequest;

struct CommonAnswer {
    int32_t result = kModemOk;
    wire::Bytes value;  // at most 496 bytes leave
};

/// The 16-byte header, then the value.
wire::Bytes encode_common(uint32_t code, const CommonAnswer& answer);

class CommonRequests {
public:
    using Handler = std::function<CommonAnswer(const CommonRequest&)>;

    /// For the GPIO and TX antenna forms the code is the first word, 0 and 1.
    void add(CommonForm form, uint32_t code, Handler handler) {
        handlers_[{form, code}] = std::move(handler);
    }

    /// The payload of the answer to a request. One that is cut short is malformed and reaches no handler.
    wire::Bytes handle(const CommonRequest& request) const;

private:
    std::map<std::pair<CommonForm, uint32_t>, Handler> handlers_;
};

}  // namespace handset
