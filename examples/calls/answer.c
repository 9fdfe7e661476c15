/*
 * answer.c: answers SIP calls over one UDP socket, in plain C without a stack.
 *
 *     cc answer.c $(pkg-config --cflags --libs sdpline-negotiate) -o answer
 *     ./answer 5080       # 127.0.0.1:5080, until SIGTERM
 *
 * Shows where the C interface is called during a call: the first INVITE creates a negotiator, which
 * receives every offer and is released by the BYE. Everything else that a stack does is left out.
 * The program need not remember requests: a retransmitted offer gets the same answer.
 */
#define _GNU_SOURCE /* memmem */
#include <sdpline/sdpnegotiate.h>

#include <arpa/inet.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

struct call {
    char id[128]; /* Call-ID; "" where the place is free */
    SdpNegotiator *session;
};

struct reply {
    const char *status; /* with its phrase */
    char warning[512];
    uint8_t body[SDP_MAX_BODY];
    uint32_t size;
};

static char local_text[] = "v=0\no=- 1 1 IN IP4 127.0.0.1\ns=-\nc=IN IP4 127.0.0.1\nt=0 0\n"
                           "m=audio 40000 RTP/AVP 8 0 101\n"
                           "a=rtpmap:101 telephone-event/8000\na=fmtp:101 0-15\n";
static SdpLine *local;
static struct call calls[1024];
static unsigned invites, closed;
static volatile sig_atomic_t stopped;

static void stop(int number) {
    (void)number;
    stopped = 1;
}

/* The length of the value of a header field, found by its full or compact name; 0 where it is
 * missing. */
static int header(const char *message, const char *name, char letter, const char **value) {
    const size_t length = strlen(name);
    for (const char *line = strchr(message, '\n'); line != NULL; line = strchr(line, '\n')) {
        const int full = strncasecmp(++line, name, length) == 0;
        const char *end = line + (full ? length : (line[0] | 32) == letter);
        if (*end == ':' && end != line) {
            *value = end + 1 + strspn(end + 1, " \t");
            return (int)strcspn(*value, "\r\n");
        }
    }
    return 0;
}

static void write_response(const char *request, const struct reply *reply, FILE *text) {
    static const char *const names[] = {"Via", "From", "To", "Call-ID", "CSeq"};
    static const char letters[] = "vfti-";
    fprintf(text, "SIP/2.0 %s\r\n", reply->status);
    for (size_t i = 0; i < sizeof names / sizeof *names; ++i) {
        const char *value = "";
        const int length = header(request, names[i], letters[i], &value);
        const int tagged = letters[i] != 't' || memmem(value, (size_t)length, "tag=", 4) != NULL;
        fprintf(text, "%s: %.*s%s\r\n", names[i], length, value, tagged ? "" : ";tag=1");
    }
    if (reply->warning[0] != '\0') {
        fprintf(text, "Warning: 399 127.0.0.1 \"%s\"\r\n", reply->warning);
    }
    fprintf(text, "Contact: <sip:callee@127.0.0.1>\r\n%sContent-Length: %u\r\n\r\n",
            reply->size != 0 ? "Content-Type: application/sdp\r\n" : "", reply->size);
    fwrite(reply->body, 1, reply->size, text);
}

/* The message to the peer about a refused body: the position and the sentence. */
static void refuse_body(SDPResult result, struct reply *reply) {
    SDPFailure place;
    SDPResultText why;
    SdpLibDescribeResult(result, &why);
    SdpLibGetLastFailure(&place);
    reply->status = "400 Bad Request";
    snprintf(reply->warning, sizeof reply->warning, "%u:%u: %s", place.ulLine, place.ulColumn,
             why.pcSentence);
}

/* Every stream is rejected: the first decision says why. */
static void refuse_streams(const SdpNegotiateReport *report, struct reply *reply) {
    const SipString *sentence = &report->ppstDecisions[0]->strSentence;
    reply->status = "488 Not Acceptable Here";
    snprintf(reply->warning, sizeof reply->warning, "%.*s", (int)sentence->ulLen, sentence->pcData);
    for (char *at = reply->warning; (at = strpbrk(at, "\"\\")) != NULL;) {
        *at = '\''; /* the sentence may quote the peer, in quotation marks */
    }
}

static void answer_offer(SdpNegotiator *session, const char *body, struct reply *reply) {
    const SdpNegotiateOptions options = {.bOpenIfRejected = 1};
    SdpLine *offer = NULL, *answer = NULL;
    SdpNegotiateReport *report = NULL;
    SDPResult result = SdpLibDeSerializeSdp((uint8_t *)body, (uint32_t)strlen(body), &offer);
    if (result != 0) {
        refuse_body(result, reply);
        return;
    }
    result = SdpNegotiateReceiveOffer(session, offer);
    if (result == 0) {
        result = SdpNegotiateMakeAnswer(session, local, &options, 0, &answer, &report);
    }
    if (result == 0 && !report->bAccepted) {
        refuse_streams(report, reply);
        SdpNegotiateRefuse(session); /* what was agreed before stays in force */
    } else if (result != 0 ||
               SdpLibSerializeSdp(answer, reply->body, sizeof reply->body, &reply->size) != 0) {
        reply->status = "500 Server Internal Error";
        SdpNegotiateRefuse(session);
    }
    SdpNegotiateReleaseReport(&report);
    SdpLibReleaseSdp(&answer);
    SdpLibReleaseSdp(&offer);
}

/* The call with this Call-ID, or a free entry for an INVITE of a new call; NULL where there is
 * none. */
static struct call *call_of(const char *request, int invite) {
    struct call *spare = NULL;
    char id[sizeof spare->id] = "";
    const char *value = "";
    const int length = header(request, "Call-ID", 'i', &value);
    snprintf(id, sizeof id, "%.*s", length, value);
    for (size_t i = 0; i < sizeof calls / sizeof *calls; ++i) {
        if (id[0] != '\0' && strcmp(calls[i].id, id) == 0) {
            return &calls[i];
        }
        spare = calls[i].id[0] == '\0' && spare == NULL ? &calls[i] : spare;
    }
    if (!invite || spare == NULL || SdpNegotiateCreate(&spare->session) != 0) {
        return NULL;
    }
    ++invites;
    memcpy(spare->id, id, sizeof id);
    return spare;
}

static void on_request(const char *request, struct reply *reply) {
    const int invite = strncmp(request, "INVITE ", 7) == 0;
    struct call *call = call_of(request, invite);
    if (call == NULL) {
        reply->status = invite ? "503 Service Unavailable" : "481 Call Does Not Exist";
        return;
    }
    const char *body = strstr(request, "\r\n\r\n");
    if (invite) {
        answer_offer(call->session, body != NULL ? body + 4 : "", reply);
    }
    /* A refused first offer does not start a call. */
    if (strncmp(request, "BYE ", 4) == 0 || SdpNegotiateGetLocal(call->session) == NULL) {
        SdpNegotiateRelease(&call->session);
        call->id[0] = '\0';
        ++closed;
    }
}

static void serve(int socket) {
    static char request[65536], response[65536];
    struct sockaddr_in from;
    socklen_t size = sizeof from;
    struct reply reply = {.status = "200 OK"};
    const ssize_t length = recvfrom(socket, request, sizeof request - 1, 0, (void *)&from, &size);
    request[length > 0 ? length : 0] = '\0';
    if (length <= 0 || strncmp(request, "ACK ", 4) == 0) {
        return;
    }
    on_request(request, &reply);
    FILE *text = fmemopen(response, sizeof response, "w");
    write_response(request, &reply, text);
    fclose(text);
    sendto(socket, response, strlen(response), 0, (void *)&from, size);
}

int main(int argc, char **argv) {
    const uint16_t port = (uint16_t)atoi(argc == 2 ? argv[1] : "0");
    const struct sockaddr_in at = {AF_INET, htons(port), {htonl(INADDR_LOOPBACK)}, {0}};
    const struct timeval second = {.tv_sec = 1}; /* SIGTERM is looked at as often at least */
    const int input = socket(AF_INET, SOCK_DGRAM, 0);
    setsockopt(input, SOL_SOCKET, SO_RCVTIMEO, &second, sizeof second);
    signal(SIGTERM, stop);
    setlinebuf(stdout);
    if (port == 0 || bind(input, (const void *)&at, sizeof at) != 0 ||
        SdpLibDeSerializeSdp((uint8_t *)local_text, sizeof local_text - 1, &local) != 0) {
        return fputs("usage: answer PORT (a free one)\n", stderr), 2;
    }
    printf("listening on sip:127.0.0.1:%u\n", port);
    while (!stopped) {
        serve(input);
    }
    SdpLibReleaseSdp(&local);
    printf("invites %u closed %u live %u\n", invites, closed, invites - closed);
    return invites != closed;
}
