#include "ipx/sap.h"

#include "base/names.h"
#include "base/print.h"
#include "ipx/address.h"
#include "ipx/sap_services.h"

namespace ifwatch {

namespace {

// Server entry, in network order:
//
//     0   service type (2)     2   server name (48)     50   network (4)
//     54  node (6)             60  socket (2)           62   hops (2)

constexpr int OPERATION_LENGTH = 2;
constexpr int REQUEST = 1;
constexpr int NEAREST_REQUEST = 3;
constexpr int ENTRIES_MAX = 7;
constexpr int ENTRY_LENGTH = 64;
constexpr int NAME_MAX = 47;

constexpr table_text OPERATIONS[] = {
    "unknown operation 0",
    "SAP Request",
    "SAP Response",
    "SAP Get Nearest Server Request",
    "SAP Get Nearest Server Response",
};

void dump_operation(int operation) {
    if (const table_text name = name_at(OPERATIONS, operation)) {
        print<"operation: %s\n">(name);
    } else {
        print<"unknown operation 0x%x\n">(operation);
    }
}

void dump_service(int service) {
    print<"\n\t\tservice: ">();
    if (const table_text name = sap_service_name(service)) {
        print<"%s (0x%x)">(name, service);
    } else {
        print<"unknown 0x%x">(service);
    }
    print<"\n\t\t">();
}

void dump_server(octets entry) {
    dump_service(entry.be16(0));
    const octets name = entry.skip(2);
    name.set(NAME_MAX, 0);
    print<"server name: %s\n\n">(name.text(0, NAME_MAX));
    print<"\tnet: ">();
    print_ipx_network(entry.skip(50));
    print<"\n\tnode: ">();
    print_ipx_node(entry.skip(54));
    print<"\n\tsocket: %x\n">(entry.be16(60));
    print<"\thops: %d\n">(entry.be16(62));
}

}  // namespace

void dump_sap(octets message) {
    const int operation = message.be16(0);
    dump_operation(operation);
    octets entry = message.skip(OPERATION_LENGTH);
    if (operation == REQUEST || operation == NEAREST_REQUEST) {
        dump_service(entry.be16(0));
        return;
    }
    for (int count = 0; count < ENTRIES_MAX && entry.length >= ENTRY_LENGTH && entry.held() > 0; ++count) {
        dump_server(entry);
        entry = entry.skip(ENTRY_LENGTH);
    }
}

}  // namespace ifwatch
