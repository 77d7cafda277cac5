#include "bench/Drive.h"

#include "tools/receiver-sim/Receiver.h"
#include "tools/receiver-sim/Ubx.h"

std::vector<std::string> simulatedDrive(int epochs) {
    constexpr sim::MessageId kMessageRate = {0x06, 0x01};
    constexpr sim::Milliseconds kInterval(9700);  // satellites move visibly from one epoch to the next
    const auto start = sim::UtcTime(std::chrono::sys_days(std::chrono::year(2026) / 11 / 23));
    sim::Receiver::Setup setup;
    setup.interval = kInterval;
    setup.fixLostAt = kInterval * (epochs / 2);
    setup.fixLostFor = kInterval * (epochs / 10);
    sim::Receiver receiver(setup, start);
    for (const sim::SentenceKind& kind : sim::kSentenceKinds) {
        const char everyEpoch[] = {static_cast<char>(kind.id.messageClass), static_cast<char>(kind.id.id), 1};
        receiver.receive(sim::ubxFrame(kMessageRate, {everyEpoch, sizeof(everyEpoch)}));
    }
    receiver.takeActions();

    std::vector<std::string> sentences;
    for (int epoch = 0; epoch < epochs; ++epoch) {
        receiver.runEpoch(receiver.nextEpoch());
        for (const sim::PortAction& action : receiver.takeActions()) {
            sentences.push_back(action.bytes);
        }
    }
    return sentences;
}
