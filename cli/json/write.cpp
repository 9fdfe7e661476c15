// Writes records as JSON.
#include "json/json.hpp"

#include "sdpline/cpp/address.hpp"
#include "text/strings.hpp"
#include "json/fields.hpp"

namespace cli {

namespace {

using Json = nlohmann::ordered_json;

Json textJson(const SipString &text) {
    const std::string_view bytes = view(text);
    return isUtf8(bytes) ? Json(bytes) : Json{{"hex", hexOf(bytes)}};
}

// The JSON object of a record.
class Output {
public:
    Json json = Json::object();

    void number(const char *key, uint32_t value, uint32_t /*most*/ = 0) { json[key] = value; }
    void reserved(const char *key, uint32_t value) { json[key] = value; }

    void given(const char *key, uint32_t value) {
        if (value != SDP_NOT_GIVEN) {
            json[key] = value;
        }
    }

    void text(const char *key, const SipString &text) { json[key] = textJson(text); }

    SipString *namedText(const char *key, SipString *value) { return optionalText(key, value); }

    SipString *optionalText(const char *key, SipString *value) {
        if (value != nullptr) {
            text(key, *value);
        }
        return value;
    }

    SDPStringList *optionalTexts(const char *key, SDPStringList *list) {
        if (list != nullptr) {
            Json array = Json::array();
            for (uint32_t i = 0; i < list->ulNoOfStrings; ++i) {
                array.push_back(textJson(*list->ppstStrings[i]));
            }
            json[key] = std::move(array);
        }
        return list;
    }

    SDPKey *optionalKey(const char *key, SDPKey *value) {
        if (value != nullptr) {
            text(key, value->strKey);
        }
        return value;
    }

    void code(const char *key, uint32_t value, const Codes &codes) {
        codeOrText(key, value, codes, nullptr, 0);
    }

    SipString *codeOrText(const char *key, uint32_t value, const Codes &codes, SipString *other,
                          uint32_t /*otherCode*/) {
        Json code = {{"code", value}};
        if (const tables::KeywordRow *const word = tables::findByCode(codes.words, value)) {
            code["word"] = word->text;
        }
        if (other != nullptr) {
            code["other"] = textJson(*other);
        }
        json[key] = std::move(code);
        return other;
    }

    void address(const char *key, const SDPTptAddr &address) {
        Output inner;
        inner.code("type", address.enTptAddrType, kTptAddrTypes);
        const auto &bytes = address.unTptAddr;
        if (address.enTptAddrType == SDP_TPTADDR_IPV4) {
            inner.json["ipv4"] = sdpline::Address::v4(std::to_array(bytes.aucIpv4)).shortText();
        } else if (address.enTptAddrType == SDP_TPTADDR_IPV6) {
            inner.json["ipv6"] = sdpline::Address::v6(std::to_array(bytes.aucIpv6)).shortText();
        }
        json[key] = std::move(inner.json);
    }

    // An RTP m= line that ends after the protocol has no list.
    void payloads(const char *key, const SDPRtpPayLoads &payloads) {
        if (payloads.pulPayLoads == nullptr) {
            return;
        }
        Json array = Json::array();
        for (uint32_t i = 0; i < payloads.ulNoOfPayLoads; ++i) {
            array.push_back(payloads.pulPayLoads[i]);
        }
        json[key] = std::move(array);
    }

    template <class Record>
    void record(const char *key, Record &record) {
        Output inner;
        fields(inner, record);
        json[key] = std::move(inner.json);
    }

    template <class Record>
    Record *optionalRecord(const char *key, Record *value) {
        if (value != nullptr) {
            record(key, *value);
        }
        return value;
    }

    template <class Record>
    Record **list(const char *key, uint32_t count, Record **records, size_t /*least*/) {
        Json array = Json::array();
        for (uint32_t i = 0; i < count; ++i) {
            Output item;
            fields(item, *records[i]);
            array.push_back(std::move(item.json));
        }
        json[key] = std::move(array);
        return records;
    }

    template <class List>
    List *optionalList(const char *key, List *value) {
        if (value != nullptr) {
            items(*this, key, *value);
        }
        return value;
    }
};

} // namespace

Json jsonOf(SdpLine &line) {
    Output output;
    fields(output, line);
    return std::move(output.json);
}

} // namespace cli
