#include "sim/addinfo.h"

#include <array>
#include <cstddef>
#include <span>

#include "base/byte_order.h"
#include "trace/element.h"

namespace ifwatch::sim {

namespace {

constexpr std::size_t MAX_FILTERS = 512;
using element_buffer = std::array<std::uint8_t, 2048>;

std::string read_filters(int socket, element_buffer& data, std::vector<filter_entry>& filters) {
    while (filters.size() < MAX_FILTERS) {
        std::uint32_t header = 0;
        if (const char* problem = read_element(socket, header, data); problem != nullptr) {
            return problem;
        }
        if (header == element_header(ELEMENT_END, 0)) {
            return {};
        }
        filter_entry entry{static_cast<char>(element_type_of(header)), {}};
        entry.text.assign(data.begin(), data.begin() + static_cast<std::ptrdiff_t>(element_data_length(header)));
        filters.push_back(std::move(entry));
    }
    return "too many filters";
}

}  // namespace

std::string read_addinfo(int socket, client_wishes& wishes) {
    element_buffer data{};
    while (true) {
        std::uint32_t header = 0;
        if (const char* problem = read_element(socket, header, data); problem != nullptr) {
            return problem;
        }
        switch (header) {
            case element_header(ELEMENT_END, 0):
                return {};
            case element_header(ELEMENT_FILTER, ELEMENT_OPEN_LENGTH):
                if (std::string problem = read_filters(socket, data, wishes.filters); !problem.empty()) {
                    return problem;
                }
                break;
            case element_header(ELEMENT_VCI, 2):
                wishes.vci = load_be16(data.data());
                break;
            case element_header(ELEMENT_VPI, 1):
                wishes.vpi = data[0];
                break;
            case element_header(ELEMENT_LINE_FLAG, 0):
                wishes.line_flag = true;
                break;
            case element_header(ELEMENT_START, 0):
                wishes.start = true;
                break;
            case element_header(ELEMENT_INFO, 0):
                wishes.list = true;
                break;
            default:
                return "unexpected element of type " + std::to_string(element_type_of(header)) + " and length " +
                       std::to_string(header >> 8);
        }
    }
}

}  // namespace ifwatch::sim
