#include "read/report/remembered.h"

#include <random>

namespace ifwatch::reporting {

std::uint64_t hash_factor() {
    static const std::uint64_t FACTOR = [] {
        std::random_device random;
        return (std::uint64_t{random()} << 32 | random()) | 1;
    }();
    return FACTOR;
}

}  // namespace ifwatch::reporting
