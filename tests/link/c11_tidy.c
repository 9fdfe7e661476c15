/* A C program that tidies a text, and finds doubts in another. */
#include <stdio.h>
#include <string.h>

#include "sdpline/sdptidy.h"

static int failures = 0;

static void expect(int holds, const char *what) {
    if (!holds) {
        fprintf(stderr, "c11_tidy: not so: %s\n", what);
        ++failures;
    }
}

static SipString textOf(char *text) {
    SipString string = {(uint32_t)strlen(text), text};
    return string;
}

int main(void) {
    char untidy[] = "v=0\no=- 1 1 IN IP4 192.0.2.1\ns=\nt=0 0\ny=1\n";
    char doubtful[] = "v=0\no=- 1 1 IN IP4 192.0.2.1\ns=-\nt=0 0\nm=audio 70000 RTP/AVP 0\n";
    const char *tidy = "v=0\no=- 1 1 IN IP4 192.0.2.1\ns=-\nt=0 0\na=x-line:y=1\n";
    SDPTidyOptions options = {SdpTidyRulesOf(SDP_TIDY_DEFAULT), NULL};
    SDPTidyReport report;
    SipString text = textOf(untidy);

    expect(SdpTidyText(&text, &options, &report) != 0, "a line of an unknown type is refused");
    expect(report.enOutcome == SDP_TIDY_REFUSED && report.pstLine == NULL, "it has no body");
    expect(report.ulNoOfRows == 1, "the empty name was tried");
    SdpTidyRelease(&report);

    options.ullRules |= SDP_TIDY_BIT(SDP_TIDY_LINE_UNKNOWN);
    expect(SdpTidyText(&text, &options, &report) == 0, "it is repaired by its rule");
    expect(report.strText.ulLen == strlen(tidy) &&
               memcmp(report.strText.pcData, tidy, strlen(tidy)) == 0,
           "the text is as expected");
    expect(report.ulNoOfRows == 2 && report.pstRows[1].enRule == SDP_TIDY_LINE_UNKNOWN &&
               report.pstRows[1].ulLine == 5 && report.pstRows[1].ulNewLine == 5,
           "both repairs are told");
    expect(report.pstLine->pstAttrList->ulNoOfAttrs == 1, "the body has the attribute");
    SdpTidyRelease(&report);

    text = textOf(doubtful);
    expect(SdpTidyFindDoubts(&text, NULL, &report) == 0 && report.ulNoOfRows == 1, "one doubt");
    expect(strcmp(SdpTidyRuleAt(report.pstRows[0].enRule)->pcName, "PortRange") == 0, "the port");
    SdpTidyRelease(&report);
    return failures != 0;
}
