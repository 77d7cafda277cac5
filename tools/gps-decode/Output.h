#ifndef GPS_DECODE_OUTPUT_H
#define GPS_DECODE_OUTPUT_H

#include <string>
#include <string_view>

namespace decode {

/** The reader of standard output has closed it. */
struct ReaderGone {};

/** Standard output or a file. Errors are thrown as std::system_error with its name. */
class Output {
public:
    /** Opens and truncates the file. @param path "-" for standard output */
    explicit Output(const std::string& path);
    ~Output();
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    /** Writes all of it. Throws ReaderGone, or std::system_error for any other failure. */
    void write(std::string_view text);

private:
    std::string mName;
    int mFd;
};

}  // namespace decode

#endif
