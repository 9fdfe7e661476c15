// Reads records from JSON. Everything is checked, so that the records of any document can be
// encoded.
#include "json/json.hpp"

#include <algorithm>
#include <cstring>
#include <limits>
#include <span>
#include <stdexcept>
#include <vector>

#include "sdpline/cpp/address.hpp"
#include "text/strings.hpp"
#include "json/fields.hpp"

namespace cli {

namespace {

using Value = nlohmann::json; // a document, or a part of one

constexpr uint32_t kMost = std::numeric_limits<uint32_t>::max();

// A wrong field; the message begins with its path.
struct BadField : std::runtime_error {
    BadField(const std::string &path, const std::string &what)
        : std::runtime_error((path.empty() ? "/" : path) + ": " + what) {}
};

// A value for a message: shortened, and only the kind of lists and objects.
std::string excerptOf(const Value &value) {
    constexpr size_t kMostBytes = 40;
    if (value.is_structured()) {
        return value.is_array() ? "an array" : "an object";
    }
    std::string text = value.dump(-1, ' ', true, Value::error_handler_t::replace);
    if (text.size() > kMostBytes) {
        text.replace(kMostBytes - 4, std::string::npos, "...\"");
    }
    return text;
}

BadField unexpected(const std::string &path, const std::string &wanted, const Value &found) {
    return {path, "expected " + wanted + ", found " + excerptOf(found)};
}

// "\"IP4\" or \"IP6\""; a description in place of many words.
std::string wordList(std::span<const tables::KeywordRow> words) {
    constexpr size_t kMostWords = 8;
    if (words.size() > kMostWords) {
        return "the name of an attribute";
    }
    std::string list;
    for (size_t i = 0; i < words.size(); ++i) {
        list += i == 0 ? "" : i + 1 < words.size() ? ", " : " or ";
        list += '"' + std::string(words[i].text) + '"';
    }
    return list;
}

std::string rangeText(uint32_t first, uint32_t last) {
    return "from " + std::to_string(first) + " to " + std::to_string(last);
}

uint32_t numberOf(const Value &value, const std::string &path, uint32_t first, uint32_t last) {
    const bool isNumber = value.is_number_integer() && (value.is_number_unsigned() || value >= 0);
    if (!isNumber || value.get<uint64_t>() < first || value.get<uint64_t>() > last) {
        throw unexpected(path, "a number " + rangeText(first, last), value);
    }
    return value.get<uint32_t>();
}

std::string bytesOfHex(const std::string &hex, const std::string &path) {
    const auto digit = [&](char byte) {
        if (!isDigit(byte) && !(isLetter(byte) && (byte | 0x20) <= 'f')) {
            throw unexpected(path, "pairs of hexadecimal digits", hex);
        }
        return isDigit(byte) ? byte - '0' : (byte | 0x20) - 'a' + 10;
    };
    if (hex.size() % 2 != 0) {
        throw unexpected(path, "pairs of hexadecimal digits", hex);
    }
    std::string bytes;
    for (size_t i = 0; i < hex.size(); i += 2) {
        bytes += static_cast<char>(digit(hex[i]) << 4 | digit(hex[i + 1]));
    }
    return bytes;
}

std::string bytesOf(const Value &value, const std::string &path) {
    std::string bytes;
    if (value.is_string()) {
        bytes = value.get<std::string>();
    } else if (value.is_object() && value.size() == 1 && value.contains("hex") &&
               value["hex"].is_string()) {
        bytes = bytesOfHex(value["hex"].get<std::string>(), path + "/hex");
    } else {
        throw unexpected(path, "a string or {\"hex\": \"...\"}", value);
    }
    if (bytes.find_first_of(std::string_view("\n\0", 2)) != std::string::npos) {
        throw BadField(path, "expected a text of one line, found a line feed or a NUL in it");
    }
    if (bytes.size() >= kMost) {
        throw BadField(path, "too long");
    }
    return bytes;
}

// Allocates zeroed memory from the block of the body.
class Memory {
public:
    explicit Memory(SDPMemCp &block) : block_(block) {}

    template <class Type>
    Type *make(size_t count = 1) {
        const size_t size = count * sizeof(Type);
        void *const memory =
            size <= kMost ? block_.pfnAlloc(&block_, static_cast<uint32_t>(size)) : nullptr;
        if (memory == nullptr) {
            throw std::runtime_error("no memory");
        }
        std::memset(memory, 0, size);
        return static_cast<Type *>(memory);
    }

    SipString text(const std::string &bytes) {
        char *const data = make<char>(bytes.size());
        std::memcpy(data, bytes.data(), bytes.size());
        return {static_cast<uint32_t>(bytes.size()), data};
    }

    SipString *newText(const std::string &bytes) {
        auto *const text = make<SipString>();
        *text = this->text(bytes);
        return text;
    }

private:
    SDPMemCp &block_;
};

// The object that a record is read from.
class Input {
public:
    Input(const Value &json, std::string path, Memory &memory)
        : json_(json), path_(std::move(path)), memory_(memory) {
        if (!json.is_object()) {
            throw unexpected(path_, "an object", json);
        }
    }

    template <class Record>
    static void read(const Value &json, const std::string &path, Memory &memory, Record &record) {
        Input input(json, path, memory);
        fields(input, record);
        input.finish();
    }

    void number(const char *key, uint32_t &value, uint32_t most = kMost) {
        value = numberOf(needed(key), pathOf(key), 0, most);
    }
    void number(const char *key, uint8_t &value) {
        value = static_cast<uint8_t>(numberOf(needed(key), pathOf(key), 0, 255));
    }

    template <class Number>
    void reserved(const char *key, Number &value) {
        const Value *const json = find(key);
        constexpr uint32_t most = std::numeric_limits<Number>::max();
        value = static_cast<Number>(json != nullptr ? numberOf(*json, pathOf(key), 0, most) : 0);
    }

    void given(const char *key, uint32_t &value) {
        const Value *const json = find(key);
        value = json != nullptr ? numberOf(*json, pathOf(key), 0, kMost) : SDP_NOT_GIVEN;
    }

    void text(const char *key, SipString &text) {
        text = memory_.text(bytesOf(needed(key), pathOf(key)));
    }

    SipString *namedText(const char *key, SipString * /*old*/) {
        return memory_.newText(bytesOf(needed(key), pathOf(key)));
    }

    SipString *optionalText(const char *key, SipString *old) {
        return find(key) != nullptr ? namedText(key, old) : nullptr;
    }

    SDPStringList *optionalTexts(const char *key, SDPStringList * /*old*/) {
        if (isAbsentList(key)) {
            return nullptr;
        }
        auto *const list = memory_.make<SDPStringList>();
        const Value &array = arrayAt(key, 0);
        list->ppstStrings = memory_.make<SipString *>(array.size());
        for (size_t i = 0; i < array.size(); ++i) {
            list->ppstStrings[i] = memory_.newText(bytesOf(array[i], pathOf(key, i)));
        }
        list->ulNoOfStrings = static_cast<uint32_t>(array.size());
        return list;
    }

    SDPKey *optionalKey(const char *key, SDPKey * /*old*/) {
        if (find(key) == nullptr) {
            return nullptr;
        }
        auto *const value = memory_.make<SDPKey>();
        text(key, value->strKey);
        return value;
    }

    // {"code": 1, "word": "IN"}, 1 or "IN"
    void code(const char *key, uint32_t &value, const Codes &codes) {
        const Value &json = needed(key);
        const std::string path = pathOf(key);
        if (json.is_string()) {
            value = codeOfWord(json, path, codes);
        } else if (json.is_object()) {
            Input input(json, path, memory_);
            value = input.checkedCode(codes);
            input.finish();
        } else {
            value = numberOf(json, path, codes.first, codes.last);
        }
    }

    // The same, or {"code": 7, "other": "text"}, or "text" in place of that.
    SipString *codeOrText(const char *key, uint32_t &value, const Codes &codes, SipString * /*old*/,
                          uint32_t otherCode) {
        const Value &json = needed(key);
        const std::string path = pathOf(key);
        SipString *other = nullptr;
        if (json.is_string() &&
            tables::findByText(codes.words, json.get<std::string>()) == nullptr) {
            value = otherCode;
            return memory_.newText(bytesOf(json, path));
        }
        if (json.is_object()) {
            Input input(json, path, memory_);
            value = input.checkedCode(codes);
            other = input.optionalText("other", nullptr);
            input.finish();
        } else {
            code(key, value, codes);
        }
        if ((value == otherCode) != (other != nullptr)) {
            throw BadField(path, "expected an \"other\" text with code " +
                                     std::to_string(otherCode) + " and with no other code");
        }
        return other;
    }

    void address(const char *key, SDPTptAddr &address) {
        Input input(needed(key), pathOf(key), memory_);
        input.code("type", address.enTptAddrType, kTptAddrTypes);
        const bool isIpv4 = address.enTptAddrType == SDP_TPTADDR_IPV4;
        const char *const name = isIpv4 ? "ipv4" : "ipv6";
        const std::string text = bytesOf(input.needed(name), input.pathOf(name));
        const sdpline::Result<sdpline::Address> octets = sdpline::Address::fromText(text);
        if (!octets || octets->isV4() != isIpv4) {
            throw unexpected(input.pathOf(name), "an address", text);
        }
        std::ranges::copy(octets->octets(), reinterpret_cast<uint8_t *>(&address.unTptAddr));
        input.finish();
    }

    void payloads(const char *key, SDPRtpPayLoads &payloads) {
        if (isAbsentList(key)) {
            return;
        }
        const Value &array = arrayAt(key, 0);
        if (array.size() > SDP_MAX_PAYLOADS) {
            throw BadField(pathOf(key), "expected at most " + std::to_string(SDP_MAX_PAYLOADS) +
                                            " payload numbers, found " +
                                            std::to_string(array.size()));
        }
        payloads.pulPayLoads = memory_.make<uint32_t>(array.size());
        for (size_t i = 0; i < array.size(); ++i) {
            payloads.pulPayLoads[i] = numberOf(array[i], pathOf(key, i), 0, kMost);
        }
        payloads.ulNoOfPayLoads = static_cast<uint32_t>(array.size());
    }

    template <class Record>
    void record(const char *key, Record &record) {
        read(needed(key), pathOf(key), memory_, record);
    }

    template <class Record>
    Record *optionalRecord(const char *key, Record * /*old*/) {
        if (find(key) == nullptr) {
            return nullptr;
        }
        auto *const value = memory_.make<Record>();
        record(key, *value);
        return value;
    }

    template <class Record>
    Record **list(const char *key, uint32_t &count, Record ** /*old*/, size_t least) {
        const Value &array = arrayAt(key, least);
        auto **const records = memory_.make<Record *>(array.size());
        for (size_t i = 0; i < array.size(); ++i) {
            records[i] = memory_.make<Record>();
            read(array[i], pathOf(key, i), memory_, *records[i]);
        }
        count = static_cast<uint32_t>(array.size());
        return records;
    }

    template <class List>
    List *optionalList(const char *key, List * /*old*/) {
        if (isAbsentList(key)) {
            return nullptr;
        }
        auto *const value = memory_.make<List>();
        items(*this, key, *value);
        return value;
    }

    void finish() const {
        for (const auto &[key, value] : json_.items()) {
            bool known = false;
            for (const char *const seen : seen_) {
                known = known || key == seen;
            }
            if (!known) {
                throw BadField(path_, "unexpected field \"" + key + '"');
            }
        }
    }

private:
    std::string pathOf(const char *key) const { return path_ + '/' + key; }
    std::string pathOf(const char *key, size_t index) const {
        return pathOf(key) + '/' + std::to_string(index);
    }

    // Null where the field is missing or null.
    const Value *find(const char *key) {
        seen_.push_back(key);
        const auto found = json_.find(key);
        return found != json_.end() && !found->is_null() ? &*found : nullptr;
    }

    // Whether the list is missing or empty.
    bool isAbsentList(const char *key) {
        const Value *const json = find(key);
        return json == nullptr || (json->is_array() && json->empty());
    }

    const Value &needed(const char *key) {
        const Value *const json = find(key);
        if (json == nullptr) {
            throw BadField(pathOf(key), "missing");
        }
        return *json;
    }

    const Value &arrayAt(const char *key, size_t least) {
        const Value &array = needed(key);
        if (!array.is_array()) {
            throw unexpected(pathOf(key), "an array", array);
        }
        if (array.size() < least) {
            throw BadField(pathOf(key), "expected at least one item, found none");
        }
        return array;
    }

    static uint32_t codeOfWord(const Value &word, const std::string &path, const Codes &codes) {
        const tables::KeywordRow *const known =
            word.is_string() ? tables::findByText(codes.words, word.get<std::string>()) : nullptr;
        if (known == nullptr) {
            throw unexpected(path, wordList(codes.words), word);
        }
        return known->code;
    }

    // Reads {"code": 1, "word": "IN"}; the word may be missing, but must not be that of another
    // code.
    uint32_t checkedCode(const Codes &codes) {
        const uint32_t value = numberOf(needed("code"), pathOf("code"), codes.first, codes.last);
        const Value *const word = find("word");
        if (word != nullptr && codeOfWord(*word, pathOf("word"), codes) != value) {
            throw unexpected(pathOf("word"), "the word for code " + std::to_string(value), *word);
        }
        return value;
    }

    const Value &json_;
    std::string path_;
    Memory &memory_;
    std::vector<const char *> seen_;
};

} // namespace

std::optional<sdpline::Body> bodyOf(const Value &document, std::string &error) {
    SdpLine *line = nullptr;
    if (SdpLibCreateSdp(&line) != 0) {
        error = "no memory";
        return std::nullopt;
    }
    sdpline::Body body = sdpline::Body::adopt(line);
    SDPMemCp *const block = line->pstMemCp;
    std::memset(line, 0, sizeof *line);
    line->pstMemCp = block;
    try {
        Memory memory(*block);
        Input::read(document, "", memory, *line);
    } catch (const std::runtime_error &problem) {
        error = problem.what();
        return std::nullopt;
    }
    return body;
}

} // namespace cli
