#!/usr/bin/env python3
"""Writes the scenarios of `./dev calls` for sipp into a folder: scenarios.py FOLDER"""

import pathlib
import sys

from scenario import Scenario

HEAD = ("v=0\no=caller 53655765 {version} IN IP[local_ip_type] [media_ip]\ns=-\n"
        "c=IN IP[media_ip_type] [media_ip]\nt=0 0\n")
AUDIO = ("m=audio [media_port] RTP/AVP 8 0 96\na=rtpmap:96 telephone-event/8000\n"
         "a=fmtp:96 0-15\n")
VIDEO = ("m=video [media_port+2] RTP/AVP 110 111\na=rtpmap:110 H264/90000\n"
         "a=fmtp:110 profile-level-id=42e00d;packetization-mode=1\na=rtpmap:111 VP8/90000\n")
FAX = ("m=image [media_port+4] udptl t38\na=T38FaxVersion:0\na=T38MaxBitRate:9600\n"
       "a=T38FaxRateManagement:transferredTCF\na=T38FaxUdpEC:t38UDPRedundancy\n")
# A malformed address: the fourth octet of c= is 256.
MALFORMED = HEAD.format(version=1).replace("c=IN IP[media_ip_type] [media_ip]",
                                           "c=IN IP4 192.0.2.256") + AUDIO
PLACE = ('Warning', '^ ?399 [^ ]+ "4:18: expected an octet of at most 255"$')
G729 = "m=audio [media_port] RTP/AVP 18\n"
NOTHING = ("Warning", '^ ?399 [^ ]+ "stream 1 rejected: no common format [(]offered G729/8000, '
           'ours PCMA/8000 PCMU/8000 telephone-event/8000[)]"$')


def body(*media, version=1):
    return HEAD.format(version=version) + "".join(media)


def status(current, strength="mandatory"):
    """Precondition lines: `current` is the direction reserved on the caller's side."""
    return (f"a=curr:qos local {current}\na=curr:qos remote none\n"
            f"a=des:qos {strength} local sendrecv\na=des:qos {strength} remote sendrecv\n")


def rich():
    """Audio with preconditions, video and fax; reserved by an UPDATE before the 200."""
    s = Scenario("rich")
    s.invites(body(AUDIO + status("none"), VIDEO, FAX),
              headers=["Supported: 100rel, precondition", "Require: 100rel"])
    s.receive(183, ("body", "m=audio [1-9][0-9]* RTP/AVP 8 0 96"),
              ("body", "a=curr:qos remote none"), ("body", "m=video [1-9][0-9]* RTP/AVP 110"),
              ("body", "m=image [1-9][0-9]* udptl t38"), reliable=True)
    s.pracks()
    s.updates(body(AUDIO + status("sendrecv"), VIDEO, FAX, version=2),
              ("body", "a=curr:qos remote sendrecv"))
    s.answered()
    s.hangs_up()
    return s


def hold():
    """Hold and resume, by re-INVITE and by UPDATE."""
    s = Scenario("hold")
    s.invites(body(AUDIO))
    s.answered(("body", "m=audio [1-9][0-9]* RTP/AVP 8 0 96"))
    s.waits()
    s.invites(body(AUDIO, "a=sendonly\n", version=2))
    s.answered(("body", "a=recvonly"))
    s.waits()
    s.invites(body(AUDIO, version=3))
    s.answered(("body", "m=audio [1-9][0-9]* RTP/AVP 8 0 96"))
    s.waits()
    s.updates(body(AUDIO, "a=inactive\n", version=4), ("body", "a=inactive"))
    s.hangs_up()
    return s


def fax():
    """Speech becomes fax and speech again, in one m= line."""
    s = Scenario("fax")
    s.invites(body(AUDIO))
    s.answered()
    s.waits()
    s.invites(body(FAX, version=2))
    s.answered(("body", "m=image [1-9][0-9]* udptl t38"), ("body", "a=T38MaxBitRate:"))
    s.waits()
    s.invites(body(AUDIO, version=3))
    s.answered(("body", "m=audio [1-9][0-9]* RTP/AVP 8 0 96"))
    s.hangs_up()
    return s


def early():
    """The answer in a reliable 183; the 200 has none (RFC 3262 section 5)."""
    s = Scenario("early")
    s.invites(body(AUDIO), headers=["Require: 100rel"])
    s.receive(183, ("body", "m=audio [1-9][0-9]* RTP/AVP 8 0 96"), reliable=True)
    s.pracks()
    s.answered(("Content-Length", "0"))
    s.hangs_up()
    return s


def offerless():
    s = Scenario("offerless")
    s.invites()
    s.rings()
    s.receive(200, ("body", "m=audio [1-9][0-9]* RTP/AVP 8 0 101"))
    s.acknowledges(body("m=audio [media_port] RTP/AVP 8\n"))
    s.waits()
    s.invites(body(AUDIO, "a=sendonly\n", version=2))
    s.answered(("body", "a=recvonly"))
    s.hangs_up()
    return s


def refused():
    """A body that is malformed gets a 400 with its place."""
    s = Scenario("refused")
    s.invites(MALFORMED)
    s.refused(400, PLACE)
    return s


def nothing():
    s = Scenario("nothing")
    s.invites(body(G729))
    s.refused(488, NOTHING)
    return s


def reinvite():
    """A re-INVITE that is refused leaves the call as it was: our next description is the second."""
    s = Scenario("reinvite")
    s.invites(body(AUDIO))
    s.answered(("body", "o=- [0-9]+ 1 IN "))
    s.waits()
    s.invites(MALFORMED)
    s.refused(400, PLACE)
    s.waits()
    s.invites(body(G729, version=2))
    s.refused(488, NOTHING)
    s.waits()
    s.invites(body(AUDIO, "a=sendonly\n", version=3))
    s.answered(("body", "a=recvonly"), ("body", "o=- [0-9]+ 2 IN "))
    s.hangs_up()
    return s


def glare():
    """An offer while the callee's waits for its answer: 491 (RFC 3311 section 5.2)."""
    s = Scenario("glare")
    s.invites(headers=["Require: 100rel"])
    s.receive(183, ("body", "m=audio [1-9][0-9]* RTP/AVP 8 0 101"), reliable=True)
    s.send("UPDATE", body(AUDIO))
    s.receive(491)
    s.pracks(body("m=audio [media_port] RTP/AVP 8\n"))
    s.answered()
    s.hangs_up()
    return s


def cancel():
    """A call that waits for its preconditions is cancelled."""
    s = Scenario("cancel")
    s.invites(body(AUDIO + status("none")), headers=["Require: 100rel"])
    s.receive(183, ("body", "a=curr:qos remote none"), reliable=True)
    s.pracks()
    back = len(s.elements) - s.invite
    s.send("CANCEL", cseq=s.invite_cseq, branch=f"[branch-{back}]")
    s.receive(200)
    s.refused(487)
    return s


def noack():
    """The 200 is never acknowledged: the callee hangs up (RFC 3261 section 13.3.1.4)."""
    s = Scenario("noack")
    s.invites(body(AUDIO))
    s.rings()
    s.receive(200, ("body", "m=audio [1-9][0-9]* RTP/AVP 8 0 96"))
    s.again(200)
    s.hung_up_on()
    return s


def left():
    """A call that is up when the callee's program is told to end: it is hung up on."""
    s = Scenario("left")
    s.invites(body(AUDIO))
    s.answered()
    s.hung_up_on()
    return s


def noprack():
    """Neither is the reliable 183: the INVITE is refused (RFC 3262 section 3)."""
    s = Scenario("noprack")
    s.invites(body(AUDIO), headers=["Require: 100rel"])
    s.receive(183, reliable=True)
    s.again(183)
    s.refused(504)
    return s


def browser():
    """The audio stream that browsers offer (RFC 5763): DTLS-SRTP, bundled, multiplexed."""
    s = Scenario("browser")
    s.invites(body(
        "a=group:BUNDLE 0\n"
        "m=audio 9 UDP/TLS/RTP/SAVPF 111 63 9 0 8 13 110 126\n"
        "a=rtcp:9 IN IP4 0.0.0.0\na=ice-ufrag:Fx2d\na=ice-pwd:qBv4mlyBMvWfwPRPD1qYrTjD\n"
        "a=fingerprint:sha-256 " + ":".join(["7A"] * 32) + "\na=setup:actpass\na=mid:0\n"
        "a=sendrecv\na=rtcp-mux\na=rtpmap:111 opus/48000/2\na=rtcp-fb:111 transport-cc\n"
        "a=fmtp:111 minptime=10;useinbandfec=1\na=rtpmap:63 red/48000/2\na=fmtp:63 111/111\n"
        "a=rtpmap:9 G722/8000\na=rtpmap:110 telephone-event/48000\n"
        "a=rtpmap:126 telephone-event/8000\n"))
    s.answered(("body", "m=audio [1-9][0-9]* UDP/TLS/RTP/SAVPF 111"), ("body", "a=rtcp-mux"),
               ("body", "a=setup:(active|passive)"), ("body", "a=fingerprint:sha-256 "))
    s.hangs_up()
    return s


def longest():
    """A body of 4093 bytes, the most that is decoded by default."""
    # Line ends have two bytes on the way. No keyword of sipp is in the text.
    head = ("v=0\no=- 1 1 IN IP4 192.0.2.1\ns=-\nc=IN IP4 192.0.2.1\nt=0 0\n"
            "m=audio 40000 RTP/AVP 8\n")
    left = 4093 - len(head) - head.count("\n")
    lines = []
    while left >= 200:
        lines.append("a=x-filler:" + "f" * 87 + "\n")
        left -= 100
    lines.append("a=x-filler:" + "f" * (left - 13) + "\n")
    text = head + "".join(lines)
    assert len(text) + text.count("\n") == 4093
    s = Scenario("longest")
    s.invites(text)
    s.answered(("body", "m=audio [1-9][0-9]* RTP/AVP 8"))
    s.hangs_up()
    return s


def compact():
    s = Scenario("compact", compact=True)
    s.invites(body(AUDIO))
    s.answered(("body", "m=audio [1-9][0-9]* RTP/AVP 8 0 96"))
    s.hangs_up()
    return s


def multipart():
    """The offer is the second part of a multipart body."""
    s = Scenario("multipart")
    s.invites("--border\nContent-Type: application/isup;version=itu-t92+\n\nnothing to read\n"
              "--border\nContent-Type: application/sdp\n\n" + body(AUDIO) + "\n--border--\n",
              kind="multipart/mixed;boundary=border")
    s.answered(("body", "m=audio [1-9][0-9]* RTP/AVP 8 0 96"))
    s.hangs_up()
    return s


SCENARIOS = (rich, hold, fax, early, offerless, refused, nothing, reinvite, glare, cancel, browser,
             longest, compact, multipart)
SILENT = (noack, noprack)  # with a server that waits for a short time
EVERY = (*SCENARIOS, *SILENT, left)


def main():
    folder = pathlib.Path(sys.argv[1])
    folder.mkdir(parents=True, exist_ok=True)
    for make in EVERY:
        scenario = make()
        (folder / f"{scenario.name}.xml").write_text(scenario.xml(), encoding="utf-8")
        print(scenario.name)


if __name__ == "__main__":
    main()
