#include "qmi_notifier.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <memory>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

#include "connection.h"
#include "folder.h"
#include "layout.h"

namespace seam {

namespace {

/// What is seen of a service. Another file at the same place is another handset.
struct Sight {
    bool is_published = false;
    ino_t file = 0;
    timespec made{};

    bool operator==(const Sight& other) const {
        return is_published == other.is_published && file == other.file && made.tv_sec == other.made.tv_sec &&
               made.tv_nsec == other.made.tv_nsec;
    }
};

bool is_published(uint32_t service_id) {
    return static_cast<bool>(connect_to(host::qmi_place(service_id)));
}

/// Nothing, or the service that is published. `last` is what was seen before: a socket that was listened to
/// and is still the same is not asked again, so that a waiting client does not keep the handset busy.
Sight look_at(uint32_t service_id, const Sight& last) {
    struct stat status;
    if (stat(handset_path(host::qmi_place(service_id)).c_str(), &status) != 0)
        return {};
    const Sight sight{true, status.st_ino, status.st_ctim};
    return sight == last || is_published(service_id) ? sight : Sight{};
}

/// A signal is known by its address: it is set when a look tells something else than the last one, and
/// whoever waits on it looks. So no thread runs when nobody waits.
struct Notifier {
    uint32_t service_id;
    const qmi_client_os_params* signal;
    Sight last;
};

/// All notifiers of the process. Never destroyed.
class Notifiers {
public:
    qmi_client_type add(uint32_t service_id, const qmi_client_os_params* signal) {
        const std::lock_guard<std::mutex> lock(mutex_);
        notifiers_.push_back(std::make_unique<Notifier>(Notifier{service_id, signal, {}}));
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

    /// True when any service of `signal` may have changed since the last call; before the first, none was
    /// there.
    bool have_changed(const qmi_client_os_params* signal) {
        const std::lock_guard<std::mutex> lock(mutex_);
        bool any = false;
        for (const auto& notifier : notifiers_) {
            if (notifier->signal != signal)
                continue;
            const Sight now = look_at(notifier->service_id, notifier->last);
            any |= !(now == notifier->last);
            notifier->last = now;
        }
        return any;
    }

    /// Tells the person at the shell what an endless wait is for, once a service.
    void explain_wait(const qmi_client_os_params* signal) {
        const std::lock_guard<std::mutex> lock(mutex_);
        for (const auto& notifier : notifiers_) {
            if (notifier->signal != signal || notifier->last.is_published ||
                !explained_.insert(notifier->service_id).second)
                continue;
            const std::string folder = host::handset_folder();
            fprintf(stderr,
                    "%s: waiting for QMI service %u: no handset publishes it in %s. "
                    "Start one with: vxk-handset serve --dir %s\n",
                    program_invocation_short_name, notifier->service_id, folder.c_str(), folder.c_str());
        }
    }

private:
    std::mutex mutex_;
    std::vector<std::unique_ptr<Notifier>> notifiers_;
    std::set<uint32_t> explained_;
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
    if (!service || !signal || !notifier)
        return QMI_INTERNAL_ERR;
    *notifier = notifiers().add(service->service_id, signal);
    return QMI_NO_ERR;
}

extern "C" qmi_client_error_type qmi_client_get_service_list(qmi_idl_service_object_type service,
                                                             qmi_service_info* array,
                                                             unsigned int* num_entries,
                                                             unsigned int* num_services) {
    if (!service || !num_services)
        return QMI_INTERNAL_ERR;
    *num_services = seam::is_published(service->service_id) ? 1 : 0;
    const unsigned stored = array && num_entries ? std::min(*num_entries, *num_services) : 0;
    if (stored != 0)
        *array = {{service->service_id, 1, 0, 0, 0}};
    if (num_entries)
        *num_entries = stored;
    return *num_services == 0 ? QMI_SERVICE_ERR : QMI_NO_ERR;
}

extern "C" int qmi_cci_os_signal_wait(qmi_client_os_params* signal, unsigned int timeout_ms) {
    if (!signal)
        return QMI_INTERNAL_ERR;
    const bool is_endless = timeout_ms == 0;
    const auto deadline = Clock::now() + std::chrono::milliseconds(timeout_ms);
    for (;;) {
        const auto now = Clock::now();
        if (notifiers().have_changed(signal))
            return QMI_NO_ERR;
        if (is_endless)
            notifiers().explain_wait(signal);
        else if (now >= deadline)
            return QMI_TIMEOUT_ERR;
        const auto next = now + seam::kLookAgain;
        std::this_thread::sleep_until(is_endless ? next : std::min(next, deadline));
    }
}
