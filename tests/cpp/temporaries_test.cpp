// Views of a body that is destroyed at the end of the expression do not compile; copies do.
#include <type_traits>
#include <utility>

#include "cpp/cpptest.hpp"

using namespace cpptest;
using namespace sdpline;

namespace {

// Whether an expression on a value of the category B compiles.
#define COMPILES(Name, expression)                                                                 \
    template <class B>                                                                             \
    concept Name = requires(B && of) {                                                             \
        std::forward<B>(of) expression;                                                            \
    }

// A view: only of a body that is an lvalue.
#define VIEWS(Name, expression)                                                                    \
    COMPILES(Name, expression);                                                                    \
    static_assert(Name<Body &> && Name<const Body &>);                                             \
    static_assert(!Name<Body> && !Name<const Body>)

VIEWS(Origins, .origin());
VIEWS(Names, .sessionName());
VIEWS(Infos, .info());
VIEWS(Uris, .uri());
VIEWS(Emails, .emails());
VIEWS(Phones, .phones());
VIEWS(Connections, .connection());
VIEWS(Bandwidths, .bandwidths());
VIEWS(TimeLines, .times());
VIEWS(Zones, .zone());
VIEWS(Keys, .key());
VIEWS(AttributeLines, .attributes());
VIEWS(Medias, .media());
VIEWS(Records, .record());
VIEWS(ConnectionsOf, .connectionOf(std::declval<const Media &>()));

// A copy: of any body.
#define VALUES(Name, expression)                                                                   \
    COMPILES(Name, expression);                                                                    \
    static_assert(Name<Body &> && Name<const Body &> && Name<Body> && Name<const Body>)

VALUES(Versions, .version());
VALUES(Encodes, .encode());
VALUES(EncodesInto, .encode(std::span<char>()));
VALUES(Clones, .clone());

// The same through a result that is a temporary.
COMPILES(NamesByArrow, ->sessionName());
COMPILES(NamesByStar, .value().sessionName());
static_assert(NamesByArrow<Result<Body> &> && NamesByArrow<const Result<Body> &>);
static_assert(!NamesByArrow<Result<Body>> && !NamesByArrow<const Result<Body>>);
static_assert(NamesByStar<Result<Body> &> && NamesByStar<const Result<Body> &>);
static_assert(!NamesByStar<Result<Body>> && !NamesByStar<const Result<Body>>);

COMPILES(Bytes, ->data());
static_assert(Bytes<Result<std::string> &> && !Bytes<Result<std::string>>);
static_assert(Bytes<Result<std::string_view>>);

// An editor owns nothing: it can come from a temporary result.
COMPILES(Edits, ->setPort(1));
static_assert(Edits<Result<MediaEditor>> && Edits<const Result<MediaEditor>>);

} // namespace

TEST(CppTemporaries, WhatOutlivesTheBodyIsTaken) {
    EXPECT_EQ((*Body::decode(kPlain)).version(), 0u);
    EXPECT_EQ(*(*Body::decode(kPlain)).encode(), kPlain);
    EXPECT_EQ(*Body::decode(kPlain).value().encode(), kPlain);
    const Error &error = Body::decode("x").error(); // a copy, which lives on
    EXPECT_FALSE(error.sentence.empty());
    const auto copy = (*Body::decode(kPlain)).clone();
    EXPECT_EQ(copy->sessionName(), "-");
    Body body = decoded(kPlain);
    EXPECT_DONE(body.media().add("audio 4 RTP/AVP 8")->setPort(6));
    EXPECT_EQ(body.media()[1].port(), 6u);
}
