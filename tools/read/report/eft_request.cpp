#include "read/report/eft_request.h"

#include "eft/eft_parameters.h"
#include "eft/eft_result.h"
#include "eft/eft_tdu.h"

namespace ifwatch::reporting {

namespace {

constexpr int RESULT = 0x43;
constexpr int APPLICATION_NAME = 0x45;
constexpr int DESIGNATION = 0x48;
constexpr int CONFIRMATION = 0x4C;

// Attributes of a file description.
constexpr int TRANSFER_NAME = 0x22;
constexpr int FILE_NAME = 0x23;

constexpr int FIRST_BLOCK = 1;
constexpr int LAST_BLOCK = 2;
constexpr int CONFIRM = 8;

/// The name of a file from its description, which may stand in a description once more.
short_text described_name(octets description) {
    short_text name;
    if (description[0] == EFT_FILE_DESCRIPTION) {
        description = take_eft_contents(description);
    }
    while (description.within() > 0) {
        const int attribute = description[0];
        const octets value = take_eft_contents(description);
        if ((attribute == TRANSFER_NAME || attribute == FILE_NAME) && name.empty()) {
            name.append(value);
        }
    }
    return name;
}

/// One result code in words, taken off `rest`; empty for one that only names the command.
std::string take_reason(octets& rest) {
    constexpr std::string_view only_command = "Response for";
    const int code = rest[0];
    rest = rest.skip(1);
    const octets none = rest.cut(0);
    if (code == EFT_WRITE) {
        rest = none;
        return {};
    }
    if (code == EFT_OTHER_REASON) {
        if (const table_text reason = eft_reason_name(rest[0])) {
            rest = rest.skip(1);
            return std::string(reason.view());
        }
        const std::string told = rest.length > 1 ? ": " + foreign_text(rest.skip(1)) : "";
        rest = none;
        return "other reason" + told;
    }
    if (const table_text name = eft_result_name(code)) {
        return name.view().starts_with(only_command) ? std::string() : std::string(name.view());
    }
    rest = none;
    text_buffer<32> text;
    print_to<"result 0x%02x">(text, code);
    return std::string(text.text());
}

}  // namespace

eft_fields read_eft_fields(octets contents, bool is_write) {
    eft_fields fields;
    while (contents.within() > 0) {
        const int parameter = contents[0];
        const octets value = take_eft_contents(contents);
        switch (parameter) {
            case RESULT:
                fields.results = value;
                break;
            case APPLICATION_NAME:
            case DESIGNATION:
                fields.name.clear();
                fields.name.append(value);
                break;
            case EFT_FILE_DESCRIPTION:
                fields.name = fields.name.empty() ? described_name(value) : fields.name;
                break;
            case CONFIRMATION:
                fields.first_block = (value[0] & FIRST_BLOCK) != 0;
                fields.last_block = (value[0] & LAST_BLOCK) != 0;
                fields.to_be_confirmed = (value[0] & CONFIRM) != 0;
                break;
            default:
                break;
        }
        if (is_write && parameter == CONFIRMATION) {
            break;  // what follows is the file
        }
    }
    return fields;
}

std::string eft_reason_text(octets results) {
    constexpr std::size_t most = 120;
    std::string text;
    octets rest = results;
    while (rest.within() > 0 && text.size() < most) {
        const std::string reason = take_reason(rest);
        text += reason.empty() || text.empty() ? "" : ", ";
        text += reason;
    }
    return text.empty() ? "no reason told" : text;
}

void put_eft_request_name(text_sink& out, const eft_request& request) {
    put(out, eft_command_name(request.command).view());
    if (!request.name.empty()) {
        put(out, " of '");
        request.name.put_to(out);
        put(out, "'");
    }
}

void put_eft_request(text_sink& out, const eft_request& request, const journal& about) {
    using enum eft_request::state;
    put_eft_request_name(out, request);
    if (about.has_sent) {
        put(out, request.sent ? " by the router" : " by the other side");
    }
    put(out, ": ");
    if (request.blocks > 0) {
        print_to<"%s in %s, ">(out, count_text(request.blocks, "block"),
                               duration_text(elapsed(request.first, request.last)));
    }
    switch (request.now) {
        case ASKED:
            put(out, "no answer yet");
            break;
        case GRANTED:
            put(out, "not over");
            break;
        case DONE:
            put(out, "done");
            break;
        case REFUSED:
            print_to<"refused: %s">(out, request.why);
            break;
        case REJECTED:
            print_to<"rejected: %s">(out, request.why);
            break;
        case BROKEN_OFF:
            put(out, "broken off");
            break;
        case ABORTED:
            print_to<"aborted: %s">(out, request.why);
            break;
    }
}

}  // namespace ifwatch::reporting
