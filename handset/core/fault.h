// Faults: what a profile makes go wrong with exchanges on the modem's roads. A fault waits for exchanges that
// match it, lets some pass, spoils some, and is over. One book holds the faults of all roads; the carrying
// out is Port's.
#pragma once

#include <chrono>
#include <cstdint>
#include <list>
#include <optional>
#include <string>
#include <vector>

#include "profile_section.h"
#include "wire.h"

namespace handset {

enum class Road { kQmi, kDiag };

/// What one request asks, as far as a fault may choose by it.
struct ExchangeKey {
    Road road = Road::kQmi;
    uint32_t service = 0;             // QMI service id; 0 on the diag road
    uint32_t message = 0;             // QMI message id; diag op
    std::optional<uint32_t> request;  // extension service: request id
    std::optional<uint32_t> code;     // common request: its code; NV and EFS access: the inner command
};

enum class FaultAction {
    kNoAnswer,
    kLate,
    kResult,       // refuse with a result
    kModemResult,  // extension service: the channel succeeds, the modem's own result is given
    kPayload,      // extension service, diag: these bytes as the answer's payload
    kTlvs,         // QMI: these bytes as the answer's TLV area
    kCut,          // only the first bytes of the answer's TLV area (QMI) or behind its op (diag)
    kClose,        // close the connection instead of answering
    kWithdraw,     // withdraw the service for a time instead of answering
    kRestart,      // restart the modem instead of answering
};

struct Fault {
    // Absent: any.
    Road road = Road::kQmi;
    std::optional<uint32_t> service;
    std::optional<uint32_t> message;
    std::optional<uint32_t> request;
    std::optional<uint32_t> code;

    uint32_t skip = 0;
    uint32_t hits = 1;  // 0: for ever

    FaultAction action = FaultAction::kNoAnswer;
    bool acts = false;  // whether the modem carries the request out before its answer is spoilt
    std::chrono::milliseconds time{0};
    int32_t result = 0;
    wire::Bytes bytes;
    uint32_t keep = 0;

    /// The action's name in the profile and in the wire log.
    const char* name() const;
};

void read_profile(Section& section, Fault& fault);

class FaultBook {
public:
    explicit FaultBook(const std::vector<Fault>& faults);

    /// The fault that spoils this exchange, or null. Each exchange is to be asked for once: faults are looked
    /// at in the order in which they came, one that still lets exchanges pass counts this one and leaves it
    /// to the next fault. The fault is valid until clear().
    const Fault* next(const ExchangeKey& key);

    void add(const Fault& fault) { entries_.push_back({fault, 0, false}); }
    void clear() { entries_.clear(); }

    /// "uim get_eid: no_answer" and "1 hit left", for a person.
    struct Line {
        std::string fault;
        std::string left;
        bool met;  // whether it has struck
    };
    std::vector<Line> lines() const;

private:
    struct Entry {
        Fault fault;
        uint32_t used;  // exchanges let pass and spoilt
        bool met;
    };
    std::list<Entry> entries_;
};

/// Reads a single fault, a JSON object. Throws ProfileError.
Fault parse_fault(const std::string& text);

}  // namespace handset
