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
    for (const std::size_t byte : {std::size_t{messageClass}, std::size_t{id}, payload.size(), payload.size() >> 8})
        body += static_cast<char>(byte);
    body += payload;
    return "\xB5\x62" + body + ubxChecksum(body);
}

/** A sentence of every kind that uses all of its record, without "$" and checksum. */
constexpr const char* kBodies[] = {
    "GNGGA,123519.5,3539.1234,S,13942.5678,W,2,08,0.9,-545.4,M,46.9,M,12.7,0120",
    "GPGLL,3539.12345,N,00042.56789,W,235959.999,A,E",
    "GLGSA,M,3,65,,300,-1,,,,,,,,88,2.5,1.3,2.1",
    "GAGSV,1,1,03,05,45,120,42,300,-1,4294967297,,12,,,",
    "GPRMC,000001.25,V,3539.1234,S,13942.5678,E,022.4,359.9,160902,3.5,W,D",
    "GPVTG,054.7,T,034.4,M,-5.5,N,010.2,K,A",
    "GBZDA,201530.00,04,07,2026,-05,30",
    "PUBX,00,081350.00,4717.1132,N,00833.9151,E,546.589,D3,2.1,2.0,0.007,77.52,-0.05,4.9,0.92,1.19,0.77,9,7,1",
};

#endif
