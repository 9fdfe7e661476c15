"""A SIP scenario as sipp reads it: requests, the responses that they get, and what these say."""

from xml.sax.saxutils import quoteattr


class Scenario:
    """Messages of one call in order. `send` and `receive` are one element each of the scenario."""

    def __init__(self, name, compact=False):
        self.name = name
        self.elements = []
        self.invite = 0  # index of the last INVITE, whose branch the ACK of a refusal has
        self.cseq = 0
        self.invite_cseq = 0
        self.invited = ""  # From, To and so on in the full or the compact form
        self.names = (
            {"Via": "v", "From": "f", "To": "t", "Call-ID": "i", "Contact": "m",
             "Content-Type": "c", "Content-Length": "l", "Supported": "k"}
            if compact else {})
        self.checks = 0

    # ---- Requests

    def send(self, method, body="", kind="application/sdp", cseq=None, branch="[branch]",
             headers=()):
        """A request of the caller. `headers` are further lines."""
        if cseq is None:
            self.cseq += 1
            cseq = self.cseq
        target = "sip:test@[remote_ip]:[remote_port]"
        lines = [
            f"{method} {target} SIP/2.0",
            self._header("Via", f"SIP/2.0/[transport] [local_ip]:[local_port];branch={branch}"),
            self._header("From", "<sip:caller@[local_ip]:[local_port]>;tag=[pid]-[call_number]"),
            self._header("To", f"<{target}>[peer_tag_param]"),
            self._header("Call-ID", "[call_id]"),
            f"CSeq: {cseq} {method}",
            self._header("Contact",
                         "<sip:caller@[local_ip]:[local_port];transport=[transport]>"),
            "Max-Forwards: 70",
            *headers,
        ]
        if body:
            lines.append(self._header("Content-Type", kind))
        lines.append(self._header("Content-Length", "[len]"))
        text = "\n".join(lines) + "\n\n" + body
        retransmit = "" if method == "ACK" else ' retrans="500"'
        self.elements.append(f"<send{retransmit}><![CDATA[\n{text}\n]]></send>")

    def invites(self, body="", **options):
        """An INVITE and the 100 that may come first."""
        self.invite = len(self.elements)
        self.send("INVITE", body, **options)
        self.invite_cseq = self.cseq
        self.receive(100, optional=True)

    def acknowledges(self, body=""):
        """The ACK of a 200."""
        self.send("ACK", body, cseq=self.invite_cseq)

    def acknowledges_refusal(self):
        """The ACK of any other final response: a part of the INVITE's transaction."""
        back = len(self.elements) - self.invite
        self.send("ACK", cseq=self.invite_cseq, branch=f"[branch-{back}]")

    def pracks(self, body=""):
        """The PRACK of the last reliable response; it gets a 200."""
        self.send("PRACK", body, headers=[f"RAck: [$rseq] {self.invite_cseq} INVITE"])
        self.receive(200)

    def updates(self, body, *checks):
        self.send("UPDATE", body)
        self.receive(200, *checks)

    def hangs_up(self):
        self.send("BYE")
        self.receive(200)

    def hung_up_on(self):
        """The callee's BYE."""
        self.elements.append('<recv request="BYE"/>')
        copied = "\n".join(f"[last_{name}:]" for name in ("Via", "From", "To", "Call-ID", "CSeq"))
        self.elements.append(f"<send><![CDATA[\nSIP/2.0 200 OK\n{copied}\n"
                             "Content-Length: 0\n\n]]></send>")

    def waits(self, milliseconds=50):
        """Between an ACK and the next request: they may arrive in the other order."""
        self.elements.append(f'<pause milliseconds="{milliseconds}"/>')

    # ---- Responses

    def receive(self, status, *checks, optional=False, reliable=False):
        """A response. A check is (where, regular expression); where is "body" or a header."""
        actions = [self._check(where, expression) for where, expression in checks]
        if reliable:
            actions.append('<ereg regexp="[0-9]+" search_in="hdr" header="RSeq:" check_it="true"'
                           ' assign_to="rseq"/>')
        attributes = f'response="{status}"' + (' optional="true"' if optional else "")
        inside = f"<action>{''.join(actions)}</action>" if actions else ""
        self.elements.append(f"<recv {attributes}>{inside}</recv>")

    def again(self, status):
        """The same response, as often as it comes before the next message."""
        self.elements.append('<label id="1"/>')
        self.elements.append(f'<recv response="{status}" optional="true" next="1"/>')

    def rings(self):
        self.receive(180, optional=True)

    def answered(self, *checks):
        """180, 200 and its ACK."""
        self.rings()
        self.receive(200, *checks)
        self.acknowledges()

    def refused(self, status, *checks):
        self.receive(status, *checks)
        self.acknowledges_refusal()

    # ---- sipp's form

    def _header(self, name, value):
        return f"{self.names.get(name, name)}: {value}"

    def _check(self, where, expression):
        self.checks += 1
        search = 'search_in="body"' if where == "body" else f'search_in="hdr" header="{where}:"'
        return (f"<ereg regexp={quoteattr(expression)} {search} check_it=\"true\""
                f' assign_to="c{self.checks}"/>')

    def xml(self):
        variables = [f"c{i + 1}" for i in range(self.checks)]
        text = "\n".join(self.elements)
        if "rseq" in text:
            variables.append("rseq")
        used = f'<Reference variables="{",".join(variables)}"/>' if variables else ""
        return (f'<?xml version="1.0" encoding="UTF-8"?>\n<scenario name="{self.name}">\n'
                f"{text}\n{used}\n</scenario>\n")
