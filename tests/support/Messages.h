#ifndef TESTS_SUPPORT_MESSAGES_H
#define TESTS_SUPPORT_MESSAGES_H

#include <cstdio>
#include <string>
#include <string_view>

/** "$", the body, "*", its checksum, CR and LF. */
inline std::string sentence(std::string_view body) {
    unsigned sum = 0;
    for (const char c : body)
        sum ^= static_cast<unsigned char>(c);
    char ending[8];
    std::snprintf(ending, sizeof(ending), "*%02X\r\n", sum);
    return "$" + std::string(body) + ending;
}

/** The two bytes after a UBX frame's payload; `bytes` begins with the class. */
inline std::string ubxChecksum(std::string_view bytes) {
    unsigned a = 0;
    unsigned b = 0;
    for (const char byte : bytes) {
        a += static_cast<unsigned char>(byte);
        b += a;
    }
    return {static_cast<char>(a), static_cast<char>(b)};
}

/** A whole UBX frame. */
inline std::string ubxFrame(unsigned char messageClass, unsigned char id, const std::string& payload) {
    std::string body;
    for (const std::size_t byte : {std::size_t{messageClass}, std::size_t{id}, payload.size(), payload.size() >> 8}) {
        body += static_cast<char>(byte);
    }
    body += payload;
    return "\xB5\x62" + body + ubxChecksum(body);
}

#endif
