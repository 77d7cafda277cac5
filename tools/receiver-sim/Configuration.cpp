#include "tools/receiver-sim/Configuration.h"

#include <algorithm>

namespace sim {

namespace {

constexpr std::uint64_t kPortSection = 1u << 0;
constexpr std::uint64_t kMessagesSection = 1u << 1;
constexpr std::uint64_t kNavigationSection = 1u << 3;

}  // namespace

Configuration defaultConfiguration(unsigned baud, Milliseconds interval) {
    Configuration configuration{{baud}, {}, {interval, kWgs84, kFirmwareWeek}};
    std::transform(kSentenceKinds.begin(), kSentenceKinds.end(), configuration.messages.rates.begin(),
                   [](const SentenceKind& kind) { return kind.defaultRate; });
    return configuration;
}

void copySections(const Configuration& from, Configuration& to, std::uint64_t mask) {
    if ((mask & kPortSection) != 0) to.port = from.port;
    if ((mask & kMessagesSection) != 0) to.messages = from.messages;
    if ((mask & kNavigationSection) != 0) to.navigation = from.navigation;
}

}  // namespace sim
