// The C++ API together with other code: programs without exceptions, and the internal headers of
// the library, whose names are in the namespace around that of the API.
#include "sdpline/sdpline.hpp"

#include "checks/checks.hpp"
#include "encoder/writers.hpp"
#include "lexer/lexer.hpp"
#include "parser/parser.hpp"
#include "services/allocation.hpp"
#include "tables/attributes.hpp"
#include "tables/keywords.hpp"
#include "tables/profiles.hpp"
#include "text/perfecthash.hpp"
#include "text/scan.hpp"

#include <type_traits>

#include "cpp/cpptest.hpp"
#include "cpp/plain.hpp"

namespace sdpline {

// Name lookup from the namespace of the library's internals finds every name of the API, and none
// of the internals.
static_assert(std::is_same_v<Body, v1::Body>);
static_assert(std::is_same_v<Error, v1::Error> && std::is_same_v<Fault, v1::Fault>);
static_assert(std::is_same_v<Result<int>, v1::Result<int>> && std::is_same_v<Status, v1::Status>);
static_assert(std::is_same_v<Origin, v1::Origin> && std::is_same_v<Address, v1::Address>);
static_assert(std::is_same_v<Connection, v1::Connection> && std::is_same_v<Media, v1::Media>);
static_assert(std::is_same_v<MediaLine, v1::MediaLine> && std::is_same_v<Time, v1::Time>);
static_assert(std::is_same_v<TypedTime, v1::TypedTime> && std::is_same_v<Repeat, v1::Repeat>);
static_assert(std::is_same_v<Repeats, v1::Repeats> && std::is_same_v<Times, v1::Times>);
static_assert(std::is_same_v<Texts, v1::Texts> && std::is_same_v<MediaList, v1::MediaList>);
static_assert(std::is_same_v<Attribute, v1::Attribute>);
static_assert(std::is_same_v<Attributes, v1::Attributes>);
static_assert(std::is_same_v<AttributeValue, v1::AttributeValue>);
static_assert(std::is_same_v<AttributesEditor, v1::AttributesEditor>);
static_assert(std::is_same_v<MediaEditor, v1::MediaEditor>);
static_assert(std::is_same_v<MediaListEditor, v1::MediaListEditor>);
static_assert(std::is_same_v<TextsEditor, v1::TextsEditor>);
static_assert(std::is_same_v<TimesEditor, v1::TimesEditor>);
static_assert(std::is_same_v<RtpMap, v1::RtpMap> && std::is_same_v<Fmtp, v1::Fmtp>);
static_assert(std::is_same_v<SilenceSupp, v1::SilenceSupp> && std::is_same_v<Ecan, v1::Ecan>);
static_assert(std::is_same_v<Precondition, v1::Precondition> && std::is_same_v<IpBcp, v1::IpBcp>);
static_assert(std::is_same_v<T38, v1::T38> && std::is_same_v<Keyword<Format>, v1::Keyword<Format>>);
static_assert(std::is_same_v<ValuesOf<SetupRole>, v1::ValuesOf<SetupRole>>);
static_assert(reversed(Direction::SendOnly) == v1::reversed(Direction::SendOnly));
static_assert(wordOf(Flow::Send) == v1::wordOf(Flow::Send));

} // namespace sdpline

TEST(CppTogether, InAProgramWithoutExceptions) {
    EXPECT_EQ(cpptest::answerWithoutExceptions(std::string(cpptest::kPlain)),
              std::string(cpptest::kPlain) + "a=recvonly\r\n");
    EXPECT_EQ(cpptest::answerWithoutExceptions("x"), sdpline::Body::decode("x").error().message());
}
