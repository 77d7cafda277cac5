#ifndef GPS_DECODE_LIBRARY_LOG_H
#define GPS_DECODE_LIBRARY_LOG_H

#include <string>

namespace decode {

/** Receives the library's messages while this object exists, to learn which field is missing. One object at a time. */
class LibraryLog {
public:
    /** @param isShown also prints the messages on standard error */
    explicit LibraryLog(bool isShown);
    ~LibraryLog();
    LibraryLog(const LibraryLog&) = delete;
    LibraryLog& operator=(const LibraryLog&) = delete;

    /** The last field that a parser missed, such as "RMC Lat"; empty for none since `clear`. */
    const std::string& missingField() const { return mMissingField; }
    void clear() { mMissingField.clear(); }

private:
    static void receive(void* log, const char* file, const char* function, int line, int tag, const char* text);

    const bool mIsShown;
    std::string mMissingField;
};

}  // namespace decode

#endif
