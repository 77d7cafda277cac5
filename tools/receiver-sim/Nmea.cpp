#include "tools/receiver-sim/Nmea.h"

#include <cstdarg>
#include <cstdio>

namespace sim {

namespace {

unsigned checksumOf(std::string_view body) {
    unsigned sum = 0;
    for (const char character : body)
        sum ^= static_cast<unsigned char>(character);
    return sum;
}

}  // namespace

std::string formatted(const char* format, ...) {
    char text[256];
    std::va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    return text;
}

std::string nmeaSentence(std::string_view body) {
    std::string sentence("$");
    sentence += body;
    return sentence + formatted("*%02X\r\n", checksumOf(body));
}

std::vector<std::string> nmeaFields(std::string_view sentence) {
    const std::size_t star = sentence.find('*');
    if (!sentence.starts_with('$') || star == std::string_view::npos) return {};
    const std::string body(sentence.substr(1, star - 1));
    if (sentence != nmeaSentence(body)) return {};

    std::vector<std::string> fields;
    std::size_t begin = 0;
    for (std::size_t end = 0; end != std::string::npos; begin = end + 1) {
        end = body.find(',', begin);
        fields.push_back(body.substr(begin, end == std::string::npos ? end : end - begin));
    }
    return fields;
}

std::string nmeaKind(std::string_view sentence) {
    const std::string_view address = sentence.substr(1, sentence.find_first_of(",*\r\n") - 1);
    if (address == "PUBX") return "PUBX";
    return address.size() == 5 ? std::string(address.substr(2)) : "";
}

}  // namespace sim
