// Every operation that allocates, with the first, second, ... request failing until none does: each
// failure is reported, changes nothing that is visible, and leaks nothing.
#include <array>
#include <functional>

#include "cpp/cpptest.hpp"
#include "support/allocations.hpp"

using namespace cpptest;
using namespace sdpline;
using support::Allocations;

namespace {

struct Operation {
    const char *name;
    std::function<Status(Body &)> run;
};

template <class Value>
Status statusOf(const Result<Value> &result) {
    return result ? Status() : Status(result.error());
}

// The source of copies, made before any request fails.
const Body &offer() {
    static const Body body = decoded(kEveryLine);
    return body;
}

const std::array kPayloads{8u, 97u};

const Operation kOperations[] = {
    {"origin", [](Body &body) { return body.setOrigin({.userName = "x", .address = "y"}); }},
    {"name", [](Body &body) { return body.setSessionName("x"); }},
    {"info", [](Body &body) { return body.setInfo("x"); }},
    {"uri", [](Body &body) { return body.setUri("x"); }},
    {"zone", [](Body &body) { return body.setZone("x"); }},
    {"key", [](Body &body) { return body.setKey("x"); }},
    {"e-mail", [](Body &body) { return body.emails().add("x"); }},
    {"time", [](Body &body) { return body.times().add(1, 2); }},
    {"connection",
     [](Body &body) {
         return body.setConnection({.address = Address::v4({1, 2, 3, 4})});
     }},
    {"connection text", [](Body &body) { return body.setConnection("IN IP4 1.2.3.4"); }},
    {"rtpmap", [](Body &body) { return body.attributes().add(RtpMap{.name = "x"}); }},
    {"attribute text", [](Body &body) { return body.attributes().add("x:y"); }},
    {"direction", [](Body &body) { return body.attributes().setDirection(Direction::Inactive); }},
    {"T.38",
     [](Body &body) {
         return body.attributes().setT38({.version = 1, .maxBitRate = 2, .maxBuffer = 3});
     }},
    {"media",
     [](Body &body) {
         return statusOf(body.media().add({.type = "x", .port = 1, .payloads = kPayloads}));
     }},
    {"media text", [](Body &body) { return statusOf(body.media().add("x 1 y z")); }},
    {"m= line",
     [](Body &body) {
         return body.media()[0].setLine({.type = "x", .protocol = "y", .format = "z"});
     }},
    {"payloads", [](Body &body) { return body.media()[0].setPayloads(kPayloads); }},
    {"media info", [](Body &body) { return body.media()[0].setInfo("x"); }},
    {"media bandwidth", [](Body &body) { return body.media()[0].bandwidths().add("x"); }},
    {"media key", [](Body &body) { return body.media()[0].setKey("x"); }},
    {"attribute by name", [](Body &body) { return body.attributes().add("x", "y"); }},
    {"attribute by known name", [](Body &body) { return body.attributes().set("tool", "y"); }},
    {"attributes of a list",
     [](Body &body) { return body.attributes().addAll(offer().media()[0].attributes()); }},
    {"values after lines of a list",
     [](Body &body) {
         const auto all = [](const Attribute &) { return true; };
         return body.attributes().addAll(offer().media()[0].attributes(), all, Direction::Inactive,
                                         Fmtp{"0", "x"});
     }},
    {"e-mail before others", [](Body &body) { return body.emails().insert(0, "x"); }},
    {"repeat",
     [](Body &body) {
         const auto times = body.times();
         return times[0].addRepeat({{1}, {2}, {3, TimeUnit::Days}});
     }},
    {"media copied", [](Body &body) { return statusOf(body.media().add(offer().media()[0])); }},
    {"media copied in part",
     [](Body &body) {
         return statusOf(body.media().insert(0, offer().media()[0], [](const Attribute &line) {
             return line.as<RtpMap>().has_value();
         }));
     }},
    {"clone",
     [](Body &body) {
         auto copy = body.clone();
         if (copy) {
             Allocations::reset();
             EXPECT_DONE(copy->setSessionName("clone"));
             body = *std::move(copy);
         }
         return statusOf(copy);
     }},
    {"create",
     [](Body &body) {
         auto made = Body::create();
         if (made) {
             body = *std::move(made);
         }
         return statusOf(made);
     }},
    {"decode",
     [](Body &body) {
         auto made = Body::decode(kPlain.substr(0, kPlain.find("m=")));
         if (made) {
             body = *std::move(made);
         }
         return statusOf(made);
     }},
};

// The visible state of a body: its text, and the t= lines that are not in the text.
std::string seen(const Body &body) {
    return written(body) + std::to_string(body.times().size());
}

// Returns the number of failed runs before one succeeded.
std::uint32_t failuresOf(const Operation &operation, std::string_view text) {
    offer();
    for (std::uint32_t n = 1;; ++n) {
        const support::Held before = support::Held::now();
        {
            Body body = decoded(text);
            const std::string was = seen(body);
            Allocations::failAt(n);
            const Status status = operation.run(body);
            const bool failed = Allocations::failed();
            Allocations::reset();
            EXPECT_EQ(status.ok(), !failed) << operation.name << ", request " << n;
            if (status) {
                EXPECT_NE(seen(body), was) << operation.name;
                return n - 1;
            }
            EXPECT_NE(status.error().fault, Fault::Argument);
            EXPECT_EQ(seen(body), was) << operation.name << ", request " << n;
            EXPECT_DONE(operation.run(body)); // and it can be done once there is memory
        }
        EXPECT_EQ(support::Held::now(), before) << operation.name << ", request " << n;
    }
}

} // namespace

TEST(CppScarce, AFailedRequestChangesNothing) {
    for (const Operation &operation : kOperations) {
        EXPECT_GE(failuresOf(operation, kEveryLine), 1u) << operation.name;
        EXPECT_GE(failuresOf(operation, kPlain), 1u) << operation.name;
    }
}

TEST(CppScarce, AFailedRequestGivesBackWhatWasTakenBeforeIt) {
    for (const Operation &operation : kOperations) {
        const std::uint32_t failures = failuresOf(operation, kPlain);
        for (std::uint32_t n = 1; n <= failures; ++n) {
            Body body = decoded(kPlain);
            support::Held once = {};
            for (int i = 0; i < 100; ++i) {
                Allocations::failAt(n);
                EXPECT_FALSE(operation.run(body));
                Allocations::reset();
                if (i == 0) {
                    once = support::Held::now();
                }
            }
            EXPECT_EQ(support::Held::now(), once) << operation.name << ", request " << n;
        }
    }
}

TEST(CppScarce, AListThatWasNotMadeIsStillAbsent) {
    Body body = decoded(kPlain);
    for (std::uint32_t n = 1; n <= 3; ++n) {
        Allocations::failAt(n);
        EXPECT_FALSE(body.emails().add("x"));
        Allocations::reset();
        EXPECT_TRUE(body.record()->pstEmailList == nullptr);
    }
    EXPECT_DONE(body.emails().add("x"));
    EXPECT_EQ(body.emails()[0], "x");
}
