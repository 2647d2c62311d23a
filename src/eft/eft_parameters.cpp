#include "eft/eft_parameters.h"

#include <algorithm>
#include <iterator>

#include "base/names.h"
#include "base/print.h"
#include "eft/eft_attributes.h"
#include "eft/eft_capabilities.h"
#include "eft/eft_directory.h"
#include "eft/eft_field.h"
#include "eft/eft_result.h"

namespace ifwatch {

namespace {

constexpr table_text RECEIVED_TDUS[] = {
    nullptr,
    "\n\t\t\tT-READ-RESTART",
    "\n\t\t\tT-TYPED-DATA",
    "\n\t\t\tT-DIRECTORY",
    "\n\t\t\tT-DELETE",
    "\n\t\t\tT-RENAME",
    "\n\t\t\tT-SAVE",
    "\n\t\t\tT-LOAD",
};

constexpr table_text DATA_SIZES[] = {"512", "1024", "2048", "4096", "8192", "16384", "32768", "65528"};

constexpr table_text BLOCKS[] = {", block ", ", first block ", ", last block ", ", first/last block "};

constexpr table_text SERVICE_CLASSES[] = {"basic kernel", "symmetrical service"};

/// The block of attributes is the value, or the parameter itself where the value holds the attributes at once.
void show_file_description(const eft_parameter& parameter, eft_tdu_state& state) {
    const octets value = parameter.value;
    const int attributes_length = dump_eft_attributes(value);
    int block_length = std::min(EFT_BLOCK_HEADER + attributes_length, value.length);
    if (attributes_length < 0) {
        dump_eft_attribute_list(value, value.length);
        block_length = value.length;
    }
    if (state.response_command == EFT_DIRECTORY) {
        const int behind_block = value.length - block_length;
        dump_eft_directory(value.at(block_length, behind_block + parameter.behind.length));
        state.response_command = 0;
        state.ended = true;
    }
}

void show_user_data(const eft_parameter& parameter, eft_tdu_state& state) {
    if (state.command != EFT_ACCESS && state.response_command != EFT_ACCESS) {
        print_eft_characters(parameter.value);
        return;
    }
    print<"TDU accepted:">();
    print_eft_capabilities(parameter.value);
    state.response_command = 0;
}

void show_characters(const eft_parameter& parameter, eft_tdu_state& /*state*/) {
    print_eft_characters(parameter.value);
}

void show_results(const eft_parameter& parameter, eft_tdu_state& state) { print_eft_results(parameter.value, state); }

void show_role(const eft_parameter& parameter, eft_tdu_state& /*state*/) {
    const int role = parameter.value[0];
    print<"%s">((role & 1) != 0 ? "Master" : "Slave");
    print<"\n\t\tTDU which may be received by this entity:">();
    print_eft_flags(RECEIVED_TDUS, role);
}

void show_timeout(const eft_parameter& parameter, eft_tdu_state& /*state*/) {
    if (const int seconds = parameter.value[0]; seconds != 0) {
        print<"%d sec">(seconds);
    } else {
        print<"timer disabled">();
    }
}

void show_size_recovery_window(const eft_parameter& parameter, eft_tdu_state& /*state*/) {
    const int value = parameter.value[0];
    print<"%s">((value & 1) != 0 ? "\n\t\t\trecovery accepted by Slave" : "\n\t\t\tno recovery accepted by Slave");
    print<"\n\t\t\tmax data size accepted by the Receiver: %s bytes">(name_at(DATA_SIZES, value >> 1 & 7));
    print<"\n\t\t\tmax window accepted by Receiver: %d">((value >> 5) + 1);
}

void show_request_identification(const eft_parameter& parameter, eft_tdu_state& /*state*/) {
    print<"%s">(parameter.value[0] != 0 ? "requested in response" : "not requested in response");
}

void show_confirmation(const eft_parameter& parameter, eft_tdu_state& state) {
    const octets value = parameter.value;
    print<"%s%s">((value[0] & 8) != 0 ? "req." : "not req.", name_at(BLOCKS, value[0] & 3));
    if (value.length > 1) {
        print<"0x%04lx">(eft_number(value.skip(1)));
    }
    if (state.command == EFT_WRITE) {
        print<"\n\tDATA:\t%d bytes">(parameter.behind.length);
        state.data_announced = true;
    }
}

void show_transfer_mode(const eft_parameter& parameter, eft_tdu_state& /*state*/) {
    const bool refused = (parameter.value[0] & 8) != 0;
    print<"%s">(refused ? "basic transfer mode not supported" : "basic transfer mode supported/required");
}

void show_recovery_point(const eft_parameter& parameter, eft_tdu_state& /*state*/) {
    print<"block 0x%04lx ">(eft_number(parameter.value));
}

void show_service_class(const eft_parameter& parameter, eft_tdu_state& /*state*/) {
    print_eft_flags(SERVICE_CLASSES, parameter.value[0]);
}

/// A printer without a label starts its own lines.
struct parameter_printer {
    int identifier = 0;
    table_text label;
    void (*show)(const eft_parameter& parameter, eft_tdu_state& state) = nullptr;
};

constexpr parameter_printer PARAMETERS[] = {
    {EFT_FILE_DESCRIPTION, nullptr, show_file_description},
    {0x40, "User data:", show_user_data},
    {0x41, "Called address:", show_characters},
    {0x42, "Calling address:", show_characters},
    {0x43, nullptr, show_results},
    {0x44, "Role/Function:", show_role},
    {0x45, "Application name:", show_characters},
    {0x46, "Appl. resp. timeout:", show_timeout},
    {0x47, "Size/recovery/window:", show_size_recovery_window},
    {0x48, "Designation:", show_characters},
    {0x49, "New name:", show_characters},
    {0x4A, "Request identification:", show_request_identification},
    {0x4B, "Identification:", show_characters},
    {0x4C, "Explicit confirmation:", show_confirmation},
    {0x4D, "Transfer mode:", show_transfer_mode},
    {0x4F, "Recovery point:", show_recovery_point},
    {0x51, "Service class:", show_service_class},
};

}  // namespace

void print_eft_parameter(const eft_parameter& parameter, eft_tdu_state& state) {
    const parameter_printer* const found =
        std::ranges::find(PARAMETERS, parameter.identifier, &parameter_printer::identifier);
    if (found == std::end(PARAMETERS)) {
        print<"\n\t\tUnknown TDU parameter identifier 0x%02x">(parameter.identifier);
        return;
    }
    if (found->label) {
        print_eft_label(found->label);
    }
    found->show(parameter, state);
}

}  // namespace ifwatch
