#ifndef GPS_DECODE_JSON_LINES_H
#define GPS_DECODE_JSON_LINES_H

#include "tools/gps-decode/Event.h"

namespace decode {

/**
 * One JSON object a line: "event", then the record's fields by name, in order. Integers never have a point; doubles
 * always have a point or an exponent and read back as the same bits. A double that is not finite, which JSON cannot
 * express, is null.
 */
class JsonLines : public Format {
public:
    void write(const Event& event, std::string& text) override;
};

}  // namespace decode

#endif
