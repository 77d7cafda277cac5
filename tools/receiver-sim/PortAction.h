#ifndef RECEIVER_SIM_PORT_ACTION_H
#define RECEIVER_SIM_PORT_ACTION_H

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tools/receiver-sim/StreamFramer.h"

namespace sim {

/**
 * One line of the report, an object whose first member names the event:
 *
 *     {"event":"sentence","kind":"RMC","text":"$GPRMC,...*5A"}   a sentence was sent
 *     {"event":"frame","class":10,"id":32,"hex":"b5620a20..."}   a binary message other than an answer was sent
 *     {"event":"bytes","hex":"0d0a"}                             other bytes of a log were sent
 *     {"event":"ack","accepted":true,"class":6,"id":1}           a configuration message was answered
 *     {"event":"antenna","status":"OPEN"}                        the sentence before it reported the antenna
 *     {"event":"restart"}  {"event":"speed","baud":38400}        the receiver restarted; its port changed speed
 *     {"event":"dropped","bytes":580}                            a client that read nothing missed bytes
 *     {"event":"end"}                                            the log is at its end
 *
 * A line about bytes that were sent while the client's end had another speed also has "garbled":true. Bytes sent
 * without a client are not reported.
 */
using Report = nlohmann::ordered_json;

/** One step at the receiver's port; steps are carried out in order. */
struct PortAction {
    std::string bytes;  ///< to send; may be empty
    unsigned baud = 0;  ///< the port's speed after this step; 0: unchanged
    /** Lines for the report, written once the step has been carried out. */
    std::vector<Report> reports{};
};

/** A step that sends the bytes, if any, and then writes the report, which is an object. */
PortAction makeAction(std::string bytes, Report report);

/** Sends a piece of a stream and reports it as "sentence", "frame" or "bytes". */
PortAction sendAction(const Piece& piece);
PortAction sendSentence(const std::string& sentence);
PortAction sendFrame(const std::string& frame);

}  // namespace sim

#endif
