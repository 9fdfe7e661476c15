"""Reads a report of sdpline check and prints its diagnostics as "file line:column severity name",
and its problems as "file problem". Fails where the report is not what its format asks for."""

import json
import re
import sys


def of_bodies(bodies):
    for body in bodies:
        assert body["accepted"] == (not body["diagnostics"] and not body.get("ignored")
                                    and not body.get("omitted")) or body["accepted"]
        for kind, name in (("diagnostics", "check"), ("warnings", "rule")):
            for entry in body[kind]:
                yield body["file"], entry["line"], entry["column"], entry["severity"], entry[name]


def read_json(text):
    document = json.loads(text)
    assert list(document) == ["bodies", "problems", "summary"], list(document)
    assert document["summary"]["bodies"] == len(document["bodies"])
    yield from of_bodies(document["bodies"])
    for problem in document["problems"]:
        yield (problem.split(":")[0],)


def read_jsonl(text):
    documents = [json.loads(line) for line in text.splitlines()]
    assert documents[-1]["type"] == "summary"
    bodies = [document for document in documents if document["type"] == "body"]
    assert documents[-1]["bodies"] == len(bodies)
    yield from of_bodies(bodies)
    for document in documents:
        if document["type"] == "problem" and document["severity"] == "error":
            yield (document["file"],)


GCC = re.compile(r"(.+?):(\d+):(\d+): (error|warning|note): (.*?)(?: \[(\w+)\])?$")


def read_gcc(text):
    for line in text.splitlines():
        if line.startswith("sdpline: note: "):
            continue
        match = GCC.match(line)
        assert match, line
        file, number, column, severity, _, name = match.groups()
        if name:
            yield file, number, column, severity, name
        elif severity == "error":
            yield (file,)


PLACE = re.compile(r"(?m)^.*?:(\d+):(\d+): (error|warning): .*\[(\w+)(?:, [^]]*)?\]"
                   r"(?: \(line checked by itself\))?$")


def read_junit(text):
    import xml.etree.ElementTree as ElementTree  # only here: it is slow to load
    root = ElementTree.fromstring(text.encode())
    assert root.tag == "testsuites"
    for suite in root:
        assert suite.tag == "testsuite", suite.tag
        cases = suite.findall("testcase")
        outcomes = {"failures": "failure", "errors": "error", "skipped": "skipped"}
        assert int(suite.get("tests")) == len(cases)
        for counter, tag in outcomes.items():
            assert int(suite.get(counter)) == sum(case.find(tag) is not None for case in cases)
        # The order in the schemas of JUnit.
        tags = [child.tag for child in suite]
        assert tags == sorted(tags, key=["testcase", "system-out"].index), tags
        for case in cases:
            assert case.get("name") and case.get("classname")
            assert {child.tag for child in case} <= {"failure", "error", "skipped", "system-out"}
            unusable = case.find("error")
            failure = case.find("failure")
            if unusable is not None or (failure is not None and failure.get("type") == "Message"):
                yield (case.get("file"),)
                continue
            text = "".join(child.text or "" for child in case)
            if failure is not None and failure.get("type") != "Omitted":
                assert failure.get("message") and f"[{failure.get('type')}" in text
            for match in PLACE.finditer(text):
                yield (case.get("file"), *match.groups())


# The members that SARIF 2.1.0 allows in these objects; any other member is refused.
SARIF = {
    "sarif": ({"version", "runs"}, {"$schema"}),
    "run": ({"tool"}, {"results", "invocations", "columnKind"}),
    "tool": ({"driver"}, set()),
    "driver": ({"name"}, {"semanticVersion", "rules"}),
    "rule": ({"id"}, {"shortDescription", "defaultConfiguration"}),
    "result": ({"message"}, {"ruleId", "ruleIndex", "level", "locations", "properties"}),
    "message": ({"text"}, set()),
    "location": (set(), {"physicalLocation", "logicalLocations"}),
    "physicalLocation": ({"artifactLocation"}, {"region", "contextRegion"}),
    "artifactLocation": ({"uri"}, set()),
    "logicalLocation": ({"name", "fullyQualifiedName"}, set()),
    "region": ({"startLine"}, {"startColumn", "snippet"}),
    "snippet": ({"text"}, set()),
    "invocation": ({"executionSuccessful"}, {"exitCode", "toolExecutionNotifications"}),
    "notification": ({"message"}, {"level", "locations"}),
}
LEVELS = {"none", "note", "warning", "error"}


def member(kind, value):
    required, allowed = SARIF[kind]
    assert isinstance(value, dict), (kind, value)
    assert required <= value.keys() <= required | allowed, (kind, sorted(value))
    return value


def place_of(location):
    place = member("physicalLocation", member("location", location)["physicalLocation"])
    uri = member("artifactLocation", place["artifactLocation"])["uri"]
    assert re.fullmatch(r"(file://)?[A-Za-z0-9._~/%-]+", uri), uri
    assert not re.search(r"%(?![0-9A-F]{2})", uri), uri
    for name in ("region", "contextRegion"):
        for key, value in member("region", place.get(name, {"startLine": 1})).items():
            if key == "snippet":
                member("snippet", value)
            else:
                assert isinstance(value, int) and value >= 1, (key, value)
    import urllib.parse
    return urllib.parse.unquote(uri), place.get("region", {})


def read_sarif(text):
    document = member("sarif", json.loads(text))
    assert document["version"] == "2.1.0"
    assert document["$schema"].startswith("https://"), document["$schema"]
    (run,) = document["runs"]
    member("run", run)
    assert run["columnKind"] in ("utf16CodeUnits", "unicodeCodePoints")
    rules = member("driver", member("tool", run["tool"])["driver"])["rules"]
    for rule in rules:
        member("message", member("rule", rule)["shortDescription"])
        assert rule["defaultConfiguration"]["level"] in LEVELS
    assert len({rule["id"] for rule in rules}) == len(rules)
    for result in run["results"]:
        member("result", result)
        assert member("message", result["message"])["text"]
        assert rules[result["ruleIndex"]]["id"] == result["ruleId"]
        assert result["level"] in LEVELS
        (location,) = result["locations"]
        file, region = place_of(location)
        if logical := location.get("logicalLocations"):  # a packet, which is no line of its file
            (packet,) = logical
            name = member("logicalLocation", packet)["name"]
            assert name == f"frame {result['properties']['frame']}" and not region, packet
            assert packet["fullyQualifiedName"] in result["message"]["text"], result
            properties = result["properties"]
            region = {"startLine": properties["line"], "startColumn": properties["byteColumn"]}
        yield file, region["startLine"], region["startColumn"], result["level"], result["ruleId"]
    (invocation,) = run["invocations"]
    member("invocation", invocation)
    assert invocation["executionSuccessful"] == (invocation["exitCode"] < 2)
    for notification in invocation["toolExecutionNotifications"]:
        member("notification", notification)
        member("message", notification["message"])
        assert notification["level"] in LEVELS
        if notification["level"] == "error":
            yield (place_of(notification["locations"][0])[0],)


def main():
    reader = {"json": read_json, "jsonl": read_jsonl, "gcc": read_gcc, "junit": read_junit,
              "sarif": read_sarif}[sys.argv[1]]
    with open(sys.argv[2], encoding="utf-8", newline="\n") as file:
        entries = list(reader(file.read()))
    for entry in entries:
        if len(entry) == 1:
            print(f"{entry[0]} problem".encode("utf-8", "replace").decode())
        else:
            file, line, column, severity, name = entry
            print(f"{file} {line}:{column} {severity} {name}".encode("utf-8", "replace").decode())


main()
