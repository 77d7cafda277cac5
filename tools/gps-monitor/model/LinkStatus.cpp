#include "tools/gps-monitor/model/LinkStatus.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "tools/common/Text.h"

namespace monitor {

namespace {

constexpr std::chrono::seconds kLongestSilence{3};

}  // namespace

LinkStatus linkStatus(const LinkFacts& facts, Clock::time_point now) {
    const std::string name = facts.device.empty() ? "the receiver" : tool::printable(facts.device);
    const bool isSilent = now - facts.lastSentence.value_or(facts.start) > kLongestSilence;
    if (facts.lastSentence && !isSilent) return {Health::good, "receiving from " + name};

    if (!facts.device.empty() && access(facts.device.c_str(), R_OK | W_OK) != 0)
        return {Health::bad, "no receiver: " + name + ": " + std::strerror(errno)};
    if (!facts.lastSentence && !facts.startMessage.empty()) return {Health::bad, "no receiver: " + facts.startMessage};
    if (!facts.lastSentence && facts.device.empty()) return {Health::bad, "no receiver: no device named"};
    if (!isSilent) return {Health::unsure, "waiting for " + name};
    if (facts.lastSentence) return {Health::bad, "no more data from " + name};
    return {Health::bad, "no data from " + name + ": silent, at another speed, or lines without CR"};
}

}  // namespace monitor
