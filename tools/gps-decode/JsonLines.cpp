#include "tools/gps-decode/JsonLines.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <span>

#include "tools/common/RecordFields.h"

namespace decode {

namespace {

/** Appends values to a text. */
class JsonWriter {
public:
    explicit JsonWriter(std::string& text) : mText(text) {}

    void name(std::string_view name) {
        if (mText.back() != '{') mText += ',';
        ((mText += '"') += name) += "\":";
    }

    void value(long long number) {
        char digits[24];
        mText.append(digits, std::to_chars(digits, std::end(digits), number).ptr);
    }

    void value(double number) {
        char digits[32];
        if (!std::isfinite(number)) {
            mText += "null";
            return;
        }
        const std::string_view shortest(digits, std::to_chars(digits, std::end(digits), number).ptr);
        mText += shortest;
        if (shortest.find_first_of(".e") == std::string_view::npos) mText += ".0";
    }

    void value(std::string_view bytes) {
        mText += '"';
        for (auto plain = bytes.begin();;) {
            const auto special = std::find_if(plain, bytes.end(), isSpecial);
            mText.append(plain, special);
            if (special == bytes.end()) break;
            escape(*special);
            plain = special + 1;
        }
        mText += '"';
    }

    template <FieldRecord Record>
    void value(const Record& record) {
        mText += '{';
        fields(record);
        mText += '}';
    }

    template <class Element>
    void value(std::span<const Element> array) {
        mText += '[';
        for (const Element& element : array) {
            if (&element != array.data()) mText += ',';
            value(fieldValue(element));
        }
        mText += ']';
    }

    template <FieldRecord Record>
    void fields(const Record& record) {
        visitFields(record, [this](const char* fieldName, const auto& field) {
            name(fieldName);
            value(field);
        });
    }

private:
    static bool isSpecial(char byte) { return byte < 0x20 || byte > 0x7E || byte == '"' || byte == '\\'; }

    void escape(char byte) {
        constexpr char kDigits[] = "0123456789abcdef";
        const auto code = static_cast<unsigned char>(byte);
        mText += '\\';
        if (byte == '"' || byte == '\\') {
            mText += byte;
        } else {
            ((mText += "u00") += kDigits[code >> 4]) += kDigits[code & 0xF];
        }
    }

    std::string& mText;
};

/** Appends an event's content. */
struct ContentWriter {
    JsonWriter& json;

    void operator()(std::string_view sentence) const {
        json.name("sentence");
        json.value(sentence);
    }
    void operator()(GpsConnectionStatus status) const {
        json.name("status");
        json.value(fieldValue(status));
    }
    template <class Record>
    void operator()(const Record* record) const {
        json.fields(*record);
    }
};

}  // namespace

void JsonLines::write(const Event& event, std::string& text) {
    JsonWriter json(text);
    text += '{';
    json.name("event");
    json.value(std::string_view(event.name));
    std::visit(ContentWriter{json}, event.content);
    text += "}\n";
}

}  // namespace decode
