#ifndef TESTS_RECEIVER_SIM_SIMULATED_RECEIVER_H
#define TESTS_RECEIVER_SIM_SIMULATED_RECEIVER_H

#include <sstream>
#include <string>
#include <vector>

#include "Nmea.h"
#include "Receiver.h"

/** "B5 62 06" as bytes. */
inline std::string hex(const std::string& text) {
    std::istringstream digits(text);
    std::string bytes;
    for (unsigned byte; digits >> std::hex >> byte;)
        bytes += static_cast<char>(byte);
    return bytes;
}

inline const std::string kZdaOn = hex("B5 62 06 01 08 00 F0 08 01 01 01 01 01 00 0C 6F");
inline const std::string kPubxOn = hex("B5 62 06 01 08 00 F1 00 01 01 01 01 01 00 05 3F");
inline const std::string kTokyo =
    hex("B5 62 06 06 2C 00 1F 85 EB 49 ED 53 58 41 90 A6 D5 EB 71 B2 72 40 FC 69 12 C3 23 AB "
        "FD 43 73 20 2A 44 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 FD 37");
inline const std::string kFiveHertz = hex("B5 62 06 08 06 00 C8 00 01 00 01 00 DE 6A");

/** A receiver that was switched on at 12:00 on 1 May 2024, and what it does, step by step. */
class SimulatedReceiver {
public:
    explicit SimulatedReceiver(const sim::Receiver::Setup& setup = {}) : receiver(setup, kStart) {}

    static constexpr sim::UtcTime kStart{std::chrono::sys_days(std::chrono::year(2024) / 5 / 1) +
                                         std::chrono::hours(12)};

    /** What comes of the bytes of a client. */
    std::string answerTo(const std::string& bytes) {
        receiver.receive(bytes);
        return bytesSent();
    }

    /** The next epoch's sentences, without start-up texts or answers. */
    std::vector<std::string> nextEpoch() {
        bytesSent();
        truth = receiver.runEpoch(receiver.nextEpoch());
        std::istringstream lines(bytesSent());
        std::vector<std::string> sentences;
        for (std::string line; std::getline(lines, line);)
            sentences.push_back(line + "\n");
        return sentences;
    }

    /** The kinds of the next epoch's sentences, each once: "RMC VTG GGA". */
    std::string nextKinds() {
        std::string kinds;
        std::string last;
        for (const std::string& sentence : nextEpoch()) {
            const std::string kind = sim::nmeaKind(sentence);
            if (kind != last) kinds.append(kinds.empty() ? "" : " ").append(kind);
            last = kind;
        }
        return kinds;
    }

    std::string bytesSent() {
        std::string bytes;
        for (const sim::PortAction& action : receiver.takeActions())
            bytes += action.bytes;
        return bytes;
    }

    sim::Receiver receiver;
    sim::Receiver::Truth truth{};
};

#endif
