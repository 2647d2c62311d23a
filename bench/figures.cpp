#include "figures.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace ifwatch::bench {

double median(std::vector<double> values) {
    if (values.empty()) {
        return 0;
    }
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::ranges::nth_element(values, middle);
    return *middle;
}

std::string decimal(double value, int digits) {
    char text[64];
    static_cast<void>(std::snprintf(text, sizeof text, "%.*f", digits, value));
    return text;
}

figure row_against(const char* name, const char* unit, double value, double other, double goal, double ratio) {
    // A goal below 1 is a fraction, and is told as one.
    const bool fraction = goal < 1;
    return {.name = name,
            .value = decimal(value, 2) + unit,
            .goal = fraction ? "at most 1/" + decimal(1 / goal, 0)
                             : "at most " + decimal(goal, goal * 10 == std::floor(goal * 10) ? 1 : 2),
            .floor = decimal(other, 2) + unit,
            .ratio = fraction ? "1/" + decimal(1 / ratio, 1) : decimal(ratio, 2),
            .met = ratio <= goal ? "yes" : "no"};
}

figure row_below(const char* name, const char* unit, double value, double goal) {
    return {.name = name,
            .value = decimal(value, 2) + unit,
            .goal = "below " + decimal(goal, 0) + unit,
            .met = value < goal ? "yes" : "no"};
}

}  // namespace ifwatch::bench
