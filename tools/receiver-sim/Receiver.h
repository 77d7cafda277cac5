#ifndef RECEIVER_SIM_RECEIVER_H
#define RECEIVER_SIM_RECEIVER_H

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/receiver-sim/Configuration.h"
#include "tools/receiver-sim/Drive.h"
#include "tools/receiver-sim/PortAction.h"
#include "tools/receiver-sim/StreamFramer.h"

namespace sim {

/** With an open antenna the receiver loses its fix. */
enum class Antenna { Ok, Open, Short };

/**
 * The receiver without its port: composes the sentences of each epoch and carries out commands. It has no thread and no
 * clock: its owner passes bytes and time, and carries out the resulting actions.
 */
class Receiver {
public:
    struct Setup {
        unsigned baud = 9600;                       ///< default speed of the port
        Milliseconds interval{1000};                ///< default interval of the epochs, above 0
        std::vector<Antenna> antenna{Antenna::Ok};  ///< states in turn, at least one; the last one stays
        Milliseconds antennaEvery{5000};            ///< how long each state lasts, above 0
        Milliseconds fixLostAt{0};                  ///< since the start
        Milliseconds fixLostFor{0};                 ///< how long there is no fix; 0: it is never lost
        /** Which configuration messages are refused; `number` counts them from 1. */
        std::function<bool(MessageId id, unsigned number)> refuses = [](MessageId, unsigned) { return false; };
    };

    Receiver(const Setup& setup, UtcTime start);

    /** Sends the start-up texts. */
    void announce();

    /** Takes bytes that a client has sent. */
    void receive(std::string_view bytes);
    /** Whether a command is incomplete. */
    bool isMidCommand() const { return mFramer.isUnfinished(); }
    /** Drops an incomplete command. */
    void receivePause();

    /** When the next epoch is due: the first multiple of the interval after the last one. */
    UtcTime nextEpoch() const;

    /** Sends the epoch of the last multiple of the interval up to `now`; missed epochs are skipped. */
    struct Truth {
        UtcTime time;
        Geodetic position;  ///< WGS84, also when the receiver reports another datum
    };
    Truth runEpoch(UtcTime now);

    const Configuration& configuration() const { return mCurrent; }

    /** The actions since the last call. */
    std::vector<PortAction> takeActions();

private:
    /** The answer to a message, and what to do after it. */
    struct Answer {
        bool isAccepted;
        void (Receiver::*afterwards)() = nullptr;
    };
    struct Command {
        MessageId id;
        Answer (Receiver::*handle)(std::string_view payload);
    };
    static const Command kCommands[];

    void handle(const std::vector<Piece>& pieces);
    void handleSentence(const std::string& sentence);
    void handleFrame(const std::string& frame);
    Answer handleMessageRate(std::string_view payload);
    Answer handleDatum(std::string_view payload);
    Answer handleRate(std::string_view payload);
    Answer handleNavigationExpert(std::string_view payload);
    Answer handlePort(std::string_view payload);
    Answer handleRestart(std::string_view payload);
    Answer handleSave(std::string_view payload);
    Answer handleStartCheck(std::string_view payload);

    bool setBaud(unsigned baud);
    void restart();
    void restartNavigation();
    void sendCheckResults();
    void switchSpeed();
    void updateAntenna(UtcTime now);
    void announceAntenna();
    void updateReception(UtcTime now);
    Fix fixAt(UtcTime time, const Motion& motion) const;

    const Setup mSetup;
    const UtcTime mStart;
    const Configuration mDefaults;
    Configuration mSaved;
    Configuration mCurrent;
    unsigned mPortBaud;  // of the port after all actions
    Antenna mAntenna;
    std::optional<UtcTime> mFixLost;  // since when there is no fix
    UtcTime mLastEpoch;
    unsigned long mEpochs = 0;
    unsigned mConfigurationMessages = 0;
    StreamFramer mFramer;
    std::vector<PortAction> mActions;
};

}  // namespace sim

#endif
