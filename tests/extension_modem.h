// The extension service of a modem behind the double: files of subscription 0, and a record of what was asked
// of it, in order, together with what else a test notes there.
#pragma once

#include <cstdio>
#include <map>
#include <string>

#include "little_endian.h"
#include "platform_double.h"

struct ExtensionModem {
    std::map<std::string, std::string> files;  // a path is as long as its length byte says
    std::string events;                        // each ends with a line break
    bool refuses = false;                      // to write and to delete

    /// Answers the double's requests from now on; the object must outlive them.
    void attach() {
        platform().send = [this](const QmiRequest& request, void* response) {
            const uint8_t* data = request.bytes.data() + 9;
            auto* out = static_cast<uint8_t*>(response);
            put_le(out + 4, 508U);
            out[8] = 1;
            if (get_le<uint32_t>(request.bytes.data()) == 2)
                files_request(data, out + 9);
            else
                events += "common " + hex(text(data, get_le<uint32_t>(request.bytes.data() + 4))) + "\n";
            return 0;
        };
    }

    /// Bytes as two upper-case digits each, without the zero bytes at the end.
    static std::string hex(const std::string& bytes) {
        std::string digits;
        for (size_t i = 0; i < bytes.find_last_not_of('\0') + 1; ++i) {
            char two[3];
            snprintf(two, sizeof two, "%02X", static_cast<unsigned char>(bytes[i]));
            digits += two;
        }
        return digits;
    }

private:
    static std::string text(const uint8_t* bytes, size_t count) {
        return {reinterpret_cast<const char*>(bytes), count};
    }

    void files_request(const uint8_t* data, uint8_t* answer) {
        const std::string path = text(data + 5, data[4]);
        const std::string content = text(data + 88, get_le<uint32_t>(data + 80));
        const auto found = files.find(path);
        const auto size = static_cast<uint32_t>(found == files.end() ? 0 : found->second.size());
        switch (data[0]) {
            case 4:
                events += "read " + path + "\n";
                put_le(answer + 4, size);
                put_le(answer + 8, size);
                put_le(answer + 16, found == files.end() ? -2 : 0);
                for (uint32_t i = 0; i < size; ++i)
                    answer[20 + i] = static_cast<uint8_t>(found->second[i]);
                return;
            case 5:
                events += "write " + path + " " + std::to_string(content.size()) + "\n";
                put_le(answer + 16, refuses ? -13 : 0);
                if (!refuses)
                    files[path] = content;
                return;
            default:
                events += "delete " + path + "\n";
                put_le(answer + 16, refuses ? -13 : 0);
                if (!refuses)
                    files.erase(path);
        }
    }
};
