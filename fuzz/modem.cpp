#include "modem.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <optional>

#include "finding.h"
#include "group5_esim.h"
#include "group7_unpack.h"
#include "group9_session.h"
#include "kelvra_extend_cmn.h"
#include "kelvra_extend_uim.h"
#include "kelvra_log.h"
#include "modem_api.h"
#include "platform_double.h"
#include "qcril_memory_management.h"
#include "qmi_codec.h"
#include "unwound_fatal.h"

namespace {

enum Kind : uint8_t {
    kStructure,
    kTlvs,
    kError,
    kIndication,
    kLoss,
    kCallback,
    kPiece,
    kFullPieces,
    kStream,
    kPause,
    kProperty,
    kNoMemory,
    kNoThread,
    kRemoteMask,
    kKinds
};

constexpr Kind kFirstSetting = kProperty;

struct Record {
    Kind kind = kPause;
    uint16_t number = 0;
    std::vector<uint8_t> bytes;
};

constexpr const char* kProperties[] = {
    "persist.vendor.radio.adb_log_kv",      "persist.kolvo.mem_trace",  "persist.vendor.ssr.restart_level",
    "persist.vendor.ssr.restart_level_bak", "persist.radio.ssr_wait_s", "persist.vendor.radio.print_stats",
};

constexpr int kQmiErrors = 5;
constexpr size_t kFullPiece = 4096;
constexpr int kFullPiecesMax = 64;  // of one run: each copies all before it
// A command that waits this many looks for its response gets one.
constexpr int kPatience = 45;

qmi_idl_service_object_type g_extension_service = nullptr;

// The modem of the run. Diag threads of the tool look for events too, hence the lock.
struct {
    std::mutex mutex;
    Input* input = nullptr;
    qmi_idl_service_object_type service = nullptr;  // whose exchange is at hand
    bool diag_open = false;
    int looks = 0;
    int full_pieces = 0;
} g_modem;

Record next_record() {
    Input& input = *g_modem.input;
    Record record;
    record.kind = static_cast<Kind>(input.u8() % kKinds);
    record.number = input.u16();
    record.bytes = input.block();
    return record;
}

void set_scene(const Record& record) {
    switch (record.kind) {
        case kProperty: {
            std::string value(record.bytes.begin(), record.bytes.end());
            value.resize(std::min<size_t>(value.find('\0'), std::min<size_t>(value.size(), 91)));
            const std::lock_guard<std::mutex> lock(platform().mutex);
            platform().properties[kProperties[record.number % std::size(kProperties)]] = value;
            return;
        }
        case kNoMemory:
            return fail_malloc(record.number);
        case kNoThread:
            platform().fail_thread_creation = EAGAIN;
            return;
        default:
            platform().remote_mask = record.number;
    }
}

void set_first_scene() {
    while (!g_modem.input->empty() && g_modem.input->peek() % kKinds >= kFirstSetting)
        set_scene(next_record());
}

/// The next record of the kinds first to last; settings on the way take effect.
std::optional<Record> next_record(Kind first, Kind last) {
    while (!g_modem.input->empty()) {
        Record record = next_record();
        if (record.kind >= first && record.kind <= last)
            return record;
        if (record.kind >= kFirstSetting)
            set_scene(record);
    }
    return std::nullopt;
}

// QMI

void indicate(unsigned message, std::vector<uint8_t> tlvs) {
    const bool by_extension = g_modem.service == g_extension_service;
    const qmi_client_ind_cb callback = by_extension ? kelvra_extend_qmi_ind_cb : platform().ind_cb;
    if (callback != nullptr)
        callback(const_cast<qmi_idl_service_object*>(g_modem.service), message, tlvs.data(),
                 static_cast<unsigned>(tlvs.size()), nullptr);
}

int take_structure(const Record& record, void* response, unsigned response_len) {
    std::copy_n(record.bytes.begin(), std::min<size_t>(record.bytes.size(), response_len),
                static_cast<uint8_t*>(response));
    return QMI_NO_ERR;
}

int take_tlvs(const Record& record, unsigned message, void* response) {
    const auto* description = seam::find_message(g_modem.service, QMI_IDL_RESPONSE, message);
    return seam::decode_message(*description, record.bytes, response) ? QMI_NO_ERR : QMI_INTERNAL_ERR;
}

// What the client library asks of a request before it sends it.
void check_request(const QmiRequest& request) {
    const auto* sent = seam::find_message(g_modem.service, QMI_IDL_REQUEST, request.message);
    const auto* awaited = seam::find_message(g_modem.service, QMI_IDL_RESPONSE, request.message);
    require(sent != nullptr && awaited != nullptr, "a request is one of its service");
    require(request.bytes.size() == sent->c_struct_len, "a request has its structure's size");
    require(request.response_len == awaited->c_struct_len, "a response has its structure's size");
    require(seam::encode_message(*sent, request.bytes.data()).has_value(), "a request can be encoded");
}

int answer(const QmiRequest& request, void* response) {
    const std::lock_guard<std::mutex> lock(g_modem.mutex);
    g_modem.service = static_cast<qmi_idl_service_object_type>(request.client);
    check_request(request);
    while (auto record = next_record(kStructure, kLoss)) {
        switch (record->kind) {
            case kStructure:
                return take_structure(*record, response, request.response_len);
            case kTlvs:
                return take_tlvs(*record, request.message, response);
            case kError:
                return -1 - record->number % kQmiErrors;
            case kIndication:
                indicate(record->number, std::move(record->bytes));
                break;
            default:
                if (g_modem.service != g_extension_service && platform().error_cb != nullptr)
                    platform().error_cb(request.client, QMI_SERVICE_ERR, nullptr);
                return QMI_SERVICE_ERR;
        }
    }
    return QMI_TIMEOUT_ERR;
}

int decode(qmi_idl_type_of_message_type type, unsigned message, const void* src, unsigned src_len, void* dst,
           unsigned dst_len) {
    const auto* description = seam::find_message(g_modem.service, type, message);
    if (description == nullptr)
        return QMI_INTERNAL_ERR;
    require(dst_len == description->c_struct_len, "an indication is decoded into its structure");
    return seam::decode_message(*description, {src, src_len}, dst) ? QMI_NO_ERR : QMI_INTERNAL_ERR;
}

// Diag

/// To the listener, if there is one, with what else its road tells. An empty response has an address, too.
template <typename Listener, typename... Rest>
void tell(Listener* listener, std::vector<uint8_t> bytes, Rest... rest) {
    bytes.reserve(1);
    if (listener != nullptr)
        listener(bytes.data(), static_cast<int>(bytes.size()), rest...);
}

void respond_by_callback(unsigned processor, const std::vector<uint8_t>& bytes) {
    const auto& remotes = platform().remote_cbs;
    if (processor == 0 || processor > remotes.size())
        return tell(platform().diag_cb, bytes, platform().diag_context);
    tell(remotes[processor - 1].cb, bytes, remotes[processor - 1].context);
}

void respond_by_dci(const std::vector<uint8_t>& bytes) {
    tell(platform().dci_cb, bytes, platform().dci_data);
}

void respond_with_full_pieces(const Record& record) {
    std::vector<uint8_t> piece(kFullPiece);
    for (size_t i = 0; i < piece.size() && !record.bytes.empty(); ++i)
        piece[i] = record.bytes[i % record.bytes.size()];
    for (int i = 0; i <= record.number % 4 && g_modem.full_pieces < kFullPiecesMax; ++i) {
        ++g_modem.full_pieces;
        respond_by_dci(piece);
    }
}

// The answer that ends every wait. It may meet the allocation that fails.
void respond_at_last() {
    for (int attempt = 0; attempt < 2; ++attempt) {
        respond_by_callback(0, {1});
        respond_by_dci({1});
    }
}

void deliver_events() {
    while (const auto record = next_record(kCallback, kPause)) {
        switch (record->kind) {
            case kCallback:
                respond_by_callback(record->number, record->bytes);
                break;
            case kPiece:
                respond_by_dci(record->bytes);
                break;
            case kFullPieces:
                respond_with_full_pieces(*record);
                break;
            case kStream:
                tell(record->number == 0 ? platform().dci_logs : platform().dci_events, record->bytes);
                break;
            default:
                return;
        }
    }
}

/// Returns what the calls return that give the occasion.
int look_for_events(int result = 0) {
    const std::lock_guard<std::mutex> lock(g_modem.mutex);
    if (!g_modem.diag_open)
        return result;
    deliver_events();
    // Without a thread nothing would end the wait.
    if (++g_modem.looks >= kPatience || platform().fail_thread_creation != 0)
        respond_at_last();
    return result;
}

bool open_diag(bool open) {
    const std::lock_guard<std::mutex> lock(g_modem.mutex);
    g_modem.diag_open = open;
    g_modem.looks = 0;
    return true;
}

void hook_diag() {
    PlatformDouble& hooks = platform();
    hooks.lsm_init = [] { return open_diag(true); };
    hooks.lsm_deinit = [] { return open_diag(false); };
    hooks.diag_send = [](int, const std::vector<uint8_t>&) { return look_for_events(); };
    hooks.dci_send = [](int, const std::vector<uint8_t>&) { return look_for_events(DIAG_DCI_NO_ERROR); };
    hooks.usleep = [](unsigned) { return look_for_events(); };
    hooks.sleep = [](unsigned) { return look_for_events(); };
}

// Process-wide words of the tool, as a process starts with them.
void reset_tool() {
    g_quiet_mode = false;
    g_adb_log_state = 2;
    IS_EID_SAVE = false;
    uim_qmi_client = nullptr;
    SSR_Detected = 0;
    failed_cnt = 0;
    g_kolvo_req_number = 0;
    g_kolvo_mem_trace = kKolvoTraceUndecided;
    g_unpk_print = 0;
    g_unpk_version_not_support_num = 0;
}

// A fatal condition leaves the session of the statistics open.
void close_statistics() {
    if (g_kolvo_client_id != -1)
        modem_api_free_client(g_kolvo_client_id);
    g_kolvo_client_id = -1;
    modem_api_release();
    require(g_kolvo_mem_cur_num == 0, "statistics blocks are freed");
}

}  // namespace

void run_tool(Input& input, const std::function<void()>& piece) {
    select_thread(true);
    reset_tool();
    platform().send = answer;
    platform().decode = decode;
    hook_diag();
    g_modem.input = &input;
    g_modem.service = g_extension_service;
    g_modem.diag_open = false;
    g_modem.full_pieces = 0;
    set_first_scene();
    count_locks();
    try {
        piece();
    } catch (const UnwoundFatal&) {
    }
    wait_for_threads();
    close_statistics();
    renew_platform();
    select_thread(false);  // libFuzzer sleeps and starts programs, too
}

void indicate(Input& input, qmi_idl_service_object_type service) {
    g_modem.service = service;
    const unsigned message = input.u16();
    indicate(message, input.block());
}

qmi_idl_service_object_type extension_service() {
    return g_extension_service;
}

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    if (freopen("/dev/null", "w", stdout) == nullptr)
        return 1;
    platform().send = [](const QmiRequest& request, void*) {
        g_extension_service = static_cast<qmi_idl_service_object_type>(request.client);
        return QMI_NO_ERR;
    };
    const uint8_t nothing = 0;
    uint8_t response = 0;
    uint32_t response_len = 0;
    kelvra_extend_qmi_send_sync(0, &nothing, 0, &response, &response_len);
    renew_platform();
    select_thread(false);
    return 0;
}
