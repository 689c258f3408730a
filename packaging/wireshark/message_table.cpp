// Prints the table of messages as Lua, for the dissector that stands behind it.
#include <cstdio>

#include "messages.h"
#include "wire.h"

namespace {

const char* form_of(messages::Form form) {
    switch (form) {
        case messages::Form::kNumber:
            return "number";
        case messages::Form::kResult:
        case messages::Form::kFailure:
            return "result";
        case messages::Form::kCountedBytes:
            return "counted";
        case messages::Form::kLongBytes:
            return "long";
        default:
            return "bytes";
    }
}

void print_fields(const char* kind, const messages::Field* fields) {
    printf(" %s = {", kind);
    for (size_t i = 0; i < messages::kFieldsMax && fields[i].name != nullptr; ++i)
        printf(" [%u] = {\"%s\", \"%s\"},", fields[i].type, fields[i].name, form_of(fields[i].form));
    printf(" },");
}

}  // namespace

int main() {
    printf("-- QMI of the vxk handset in Wireshark: made with its table of messages.\nlocal services = {\n");
    for (const messages::Service& service : messages::services()) {
        printf("  [%u] = { name = \"%s\", messages = {\n", service.id, service.name);
        for (const messages::Message& row : messages::all_messages()) {
            if (row.service != service.id)
                continue;
            printf("    [%u] = { name = \"%s\",", row.id, row.name);
            print_fields("request", row.request);
            print_fields("response", row.response);
            print_fields("indication", row.indication);
            printf(" },\n");
        }
        printf("  } },\n");
    }
    printf("}\nlocal commands = {\n");
    for (const messages::Command& row : messages::commands())
        printf("  [\"%u.%u.%u\"] = \"%s\",\n", row.request, static_cast<unsigned>(row.form), row.code,
               row.name);
    printf("}\n\n");
}
