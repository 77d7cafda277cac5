#ifndef GPS_DECODE_INPUT_H
#define GPS_DECODE_INPUT_H

#include <optional>
#include <string>

namespace decode {

/** A file or standard input. Errors are thrown as std::system_error with the name of the input. */
class Input {
public:
    /** @param path "-" for standard input */
    explicit Input(const std::string& path);
    ~Input();
    Input(const Input&) = delete;
    Input& operator=(const Input&) = delete;

    const std::string& name() const { return mName; }
    int fd() const { return mFd; }
    /** Bytes of a regular file. */
    std::optional<std::size_t> size() const;
    /** Waits for bytes and reads them. 0 at the end. */
    std::size_t read(char* buffer, std::size_t size);

private:
    std::string mName;
    int mFd;
};

}  // namespace decode

#endif
