#include "qmi_notifier.h"

#include <algorithm>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "modem.h"
#include "note.h"

namespace seam {

namespace {

bool are_same(const Road::Instances& some, const Road::Instances& others) {
    return std::equal(some.begin(), some.end(), others.begin(), others.end(),
                      [](const auto& one, const auto& other) {
                          return std::equal(one.info, std::end(one.info), other.info);
                      });
}

/// A signal is known by its address: it is set when a look tells something else than the last one, and
/// whoever waits on it looks. So no thread runs when nobody waits.
struct Notifier {
    uint32_t service_id;
    const qmi_client_os_params* signal;
    Road::Instances last;
    bool is_explained;
};

/// All notifiers of the process. Never destroyed.
class Notifiers {
public:
    qmi_client_type add(uint32_t service_id, const qmi_client_os_params* signal) {
        const std::lock_guard<std::mutex> lock(mutex_);
        notifiers_.push_back(std::make_unique<Notifier>(Notifier{service_id, signal, {}, false}));
        return notifiers_.back().get();
    }

    bool remove(const void* handle) {
        const std::lock_guard<std::mutex> lock(mutex_);
        const auto found = std::find_if(notifiers_.begin(), notifiers_.end(),
                                        [&](const auto& notifier) { return notifier.get() == handle; });
        if (found == notifiers_.end())
            return false;
        notifiers_.erase(found);
        return true;
    }

    /// True when any service of `signal` may have changed since the last call; before the first,
    /// none was there.
    bool have_changed(const qmi_client_os_params* signal) {
        const std::lock_guard<std::mutex> lock(mutex_);
        bool any = false;
        for (const auto& notifier : notifiers_) {
            if (notifier->signal != signal)
                continue;
            auto now = modem()->road->look(notifier->service_id, notifier->last);
            any |= !are_same(now, notifier->last);
            notifier->last = std::move(now);
        }
        return any;
    }

    /// The service was not there for somebody else: whoever waits for it looks at it anew.
    void forget(uint32_t service_id) {
        const std::lock_guard<std::mutex> lock(mutex_);
        for (const auto& notifier : notifiers_) {
            if (notifier->service_id == service_id)
                notifier->last.clear();
        }
    }

    std::vector<uint32_t> services(const qmi_client_os_params* signal) {
        const std::lock_guard<std::mutex> lock(mutex_);
        std::vector<uint32_t> services;
        for (const auto& notifier : notifiers_) {
            if (notifier->signal == signal)
                services.push_back(notifier->service_id);
        }
        return services;
    }

    /// Tells the person at the shell what an endless wait is for.
    void explain_wait(const qmi_client_os_params* signal) {
        const std::lock_guard<std::mutex> lock(mutex_);
        for (const auto& notifier : notifiers_) {
            if (notifier->signal == signal && notifier->last.empty() &&
                !std::exchange(notifier->is_explained, true))
                note("waiting for QMI service " + std::to_string(notifier->service_id) + ": " +
                     modem()->road->absence());
        }
    }

private:
    std::mutex mutex_;
    std::vector<std::unique_ptr<Notifier>> notifiers_;
};

Notifiers& notifiers() {
    static auto* all = new Notifiers;
    return *all;
}

}  // namespace

bool release_notifier(qmi_client_type handle) {
    return notifiers().remove(handle);
}

}  // namespace seam

using seam::Clock;
using seam::notifiers;

extern "C" qmi_client_error_type qmi_client_notifier_init(qmi_idl_service_object_type service,
                                                          qmi_client_os_params* signal,
                                                          qmi_client_type* notifier) {
    if (service == nullptr || signal == nullptr || notifier == nullptr)
        return QMI_INTERNAL_ERR;
    *notifier = notifiers().add(service->service_id, signal);
    return QMI_NO_ERR;
}

extern "C" qmi_client_error_type qmi_client_get_service_list(qmi_idl_service_object_type service,
                                                             qmi_service_info* array,
                                                             unsigned int* num_entries,
                                                             unsigned int* num_services) {
    if (service == nullptr || num_services == nullptr)
        return QMI_INTERNAL_ERR;
    const auto found = seam::modem()->road->look(service->service_id, {});
    *num_services = static_cast<unsigned>(found.size());
    const unsigned stored =
        array != nullptr && num_entries != nullptr ? std::min(*num_entries, *num_services) : 0;
    std::copy_n(found.begin(), stored, array);
    if (num_entries != nullptr)
        *num_entries = stored;
    if (!found.empty())
        return QMI_NO_ERR;
    notifiers().forget(service->service_id);
    return QMI_SERVICE_ERR;
}

extern "C" int qmi_cci_os_signal_wait(qmi_client_os_params* signal, unsigned int timeout_ms) {
    if (signal == nullptr)
        return QMI_INTERNAL_ERR;
    const bool is_endless = timeout_ms == 0;
    const auto deadline =
        is_endless ? Clock::time_point::max() : Clock::now() + std::chrono::milliseconds(timeout_ms);
    for (;;) {
        const auto now = Clock::now();
        if (notifiers().have_changed(signal))
            return QMI_NO_ERR;
        if (is_endless)
            notifiers().explain_wait(signal);
        else if (now >= deadline)
            return QMI_TIMEOUT_ERR;
        seam::modem()->road->wait_for_change(notifiers().services(signal), deadline);
    }
}
