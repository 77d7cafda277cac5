#ifndef RECEIVER_SIM_LOG_REPLAY_H
#define RECEIVER_SIM_LOG_REPLAY_H

#include <string_view>
#include <vector>

#include "tools/receiver-sim/PortAction.h"

namespace sim {

/**
 * A captured byte stream, epoch by epoch. An epoch begins at an RMC sentence; the first one also has what precedes
 * that. The epochs together are the log, byte for byte.
 */
class LogReplay {
public:
    explicit LogReplay(std::string_view log);

    std::vector<PortAction> takeEpoch();
    bool isAtEnd() const { return mNext == mEpochs.size(); }
    void rewind() { mNext = 0; }

private:
    std::vector<std::vector<PortAction>> mEpochs;
    std::size_t mNext = 0;
};

}  // namespace sim

#endif
