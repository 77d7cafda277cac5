#ifndef RECEIVER_SIM_SENTENCES_H
#define RECEIVER_SIM_SENTENCES_H

#include <array>
#include <string>
#include <vector>

#include "tools/receiver-sim/Drive.h"
#include "tools/receiver-sim/Sky.h"
#include "tools/receiver-sim/Ubx.h"
#include "tools/receiver-sim/UtcTime.h"

namespace sim {

/** What the receiver knows at one epoch. Without a fix it still knows the time and which satellites are in view. */
struct Fix {
    bool isValid;
    UtcTime time;            ///< as the receiver computes it: its date may be 1024 weeks early
    Geodetic position;       ///< in the datum that the receiver reports
    double geoidSeparation;  ///< sea level above that datum's ellipsoid, metres
    Motion motion;
    std::vector<Satellite> sky;
};

/** A kind of sentence that the receiver can send with every epoch. */
struct SentenceKind {
    MessageId id;
    unsigned char defaultRate;  ///< epochs from one to the next; 0: not sent
    std::vector<std::string> (*compose)(const Fix&);
};

/** Every kind, in the order in which an epoch's sentences are sent. */
constexpr std::size_t kSentenceKindCount = 8;
extern const std::array<SentenceKind, kSentenceKindCount> kSentenceKinds;

/** A TXT sentence. */
std::string textSentence(const std::string& text);

}  // namespace sim

#endif
