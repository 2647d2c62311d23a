#pragma once

#include <string>
#include <vector>

namespace ifwatch::bench {

/// A row of the table. What does not apply to a figure is empty.
struct figure {
    std::string name;
    std::string value{};  // with its unit
    std::string goal{};
    std::string floor{};
    std::string ratio{};
    std::string met{};  // "yes" or "no"
};

/// Where the programs are, and where files may be left.
struct workplace {
    std::string programs;
    std::string scratch;

    [[nodiscard]] std::string program(const char* name) const { return programs + '/' + name; }
    [[nodiscard]] std::string file(const char* name) const { return scratch + '/' + name; }
};

using figures = std::vector<figure>;

/// The middle one of the values (of an even number the upper of both).
[[nodiscard]] double median(std::vector<double> values);

/// A number with so many digits behind the point.
[[nodiscard]] std::string decimal(double value, int digits);

/// A row for a figure that is to be at most `goal` times another; `ratio` is how many times it is.
[[nodiscard]] figure row_against(const char* name, const char* unit, double value, double other, double goal,
                                 double ratio);

/// A row for a figure with a goal of its own.
[[nodiscard]] figure row_below(const char* name, const char* unit, double value, double goal);

/// Whole program against the floor reader, into /dev/null, a pipe and a PCAP file; against tcpdump and tshark.
void measure_streams(const workplace& place, figures& rows);

/// D-channel call traces, octet by octet of text.
void measure_dchannel(const workplace& place, figures& rows);

/// The time to the first record, and the memory of a long run.
void measure_start(const workplace& place, figures& rows);
void measure_memory(const workplace& place, figures& rows);

/// What the analyser's plug-in takes for a record of one interface, and of 64 at a time; its memory for each of them.
void measure_captures(const workplace& place, figures& rows);

/// Captures read back: against tcpdump and tshark, against showing the same records from memory, from short to long
/// ones, and the memory of it.
void measure_read(const workplace& place, figures& rows);

/// Time per octet of records of growing length. Every measured point goes to the file `curves` as "SERIES LENGTH
/// MICROSECONDS OCTETS-OF-TEXT".
void measure_growth(const std::string& curves, figures& rows);

}  // namespace ifwatch::bench
