#ifndef GPS_DECODE_RAW_SENTENCES_H
#define GPS_DECODE_RAW_SENTENCES_H

#include "tools/gps-decode/Event.h"

namespace decode {

/** The bytes of the raw sentences and nothing else. */
class RawSentences : public Format {
public:
    void write(const Event& event, std::string& text) override {
        if (const auto* const sentence = std::get_if<std::string_view>(&event.content)) text += *sentence;
    }
};

}  // namespace decode

#endif
