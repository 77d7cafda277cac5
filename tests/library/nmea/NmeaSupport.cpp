#include "NmeaSupport.h"

std::string Recorder::kinds() const {
    std::string text;
    for (const auto& [kind, record] : received)
        text += (text.empty() ? "" : " ") + kind;
    return text;
}

bool feed(GpsParseNmeaManager& manager, std::string_view chunk, const Registry& registry, GeodeticSystem base) {
    const std::vector<char> exact(chunk.begin(), chunk.end());
    return manager.parseNmeaSentence(exact.data(), static_cast<unsigned int>(exact.size()), registry.data(),
                                     static_cast<unsigned int>(registry.size()), base, true);
}

const std::vector<std::string> kBodies = {
    "GNGGA,123519.5,3539.1234,S,13942.5678,W,2,08,0.9,-545.4,M,46.9,M,12.7,0120",
    "GPGLL,3539.12345,N,00042.56789,W,235959.999,A,E",
    "GLGSA,M,3,65,,300,-1,,,,,,,,88,2.5,1.3,2.1",
    "GAGSV,1,1,03,05,45,120,42,300,-1,4294967297,,12,,,",
    "GPRMC,000001.25,V,3539.1234,S,13942.5678,E,022.4,359.9,160902,3.5,W,D",
    "GPVTG,054.7,T,034.4,M,-5.5,N,010.2,K,A",
    "GBZDA,201530.00,04,07,2026,-05,30",
    "PUBX,00,081350.00,4717.1132,N,00833.9151,E,546.589,D3,2.1,2.0,0.007,77.52,-0.05,4.9,0.92,1.19,0.77,9,7,1",
};
