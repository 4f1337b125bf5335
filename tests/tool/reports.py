#!/usr/bin/env python3
"""Checks files with htstool in every format: documents follow their schemas, and all say the same.

usage: reports.py HTSTOOL SOURCE_FOLDER

The files are the smallest ones of all codes, and files that have many findings, odd names or cannot be
read. Together the documents have every key of their schemas, with each of its types.
"""

import copy
import json
import re
import subprocess
import sys
import tempfile
from pathlib import Path
from urllib.parse import unquote, urlparse

import jsonschema

WORDS = {"string": "text", "integer": "number", "number": "number", "boolean": "boolean", "null": "null",
         "array": "array", "object": "object"}
TYPES = {str: "text", int: "number", float: "number", bool: "boolean", type(None): "null", list: "array",
         dict: "object"}
MANY = "many.hts"


def strict(schema):
    """The schema without keys that it does not name: a reader must take them, a writer has none."""
    if isinstance(schema, list):
        return [strict(part) for part in schema]
    if not isinstance(schema, dict):
        return schema
    result = {key: strict(value) for key, value in schema.items()}
    if isinstance(schema.get("properties"), dict):
        result["additionalProperties"] = False
    return result


def validator_of(path):
    schema = json.loads(path.read_text(encoding="utf-8"))
    kind = jsonschema.validators.validator_for(schema)
    kind.check_schema(schema)
    return schema, kind(strict(schema))


def described_keys(schema, part, path=""):
    """The types of each key; it has a description for whoever reads the document."""
    if "$ref" in part and "properties" not in part:
        part = {**schema["$defs"][part["$ref"].split("/")[-1]], **part}
    for key, value in part.get("properties", {}).items():
        types = value["type"] if isinstance(value["type"], list) else [value["type"]]
        name = path + key
        assert value["description"], name
        yield name, {WORDS[word] for word in types}
        if "properties" in value:
            yield from described_keys(schema, value, name + ".")
        elif "items" in value and not name.startswith("control"):
            yield from described_keys(schema, value["items"], name + "[].")


def types_seen(value, path, seen):
    """The type of everything below a value; the keys of counts are codes."""
    if path and not path.endswith("[]"):
        seen.setdefault(path, set()).add(TYPES[type(value)])
    if path in ("files[].counts", "controlCounts", "controlFindings"):
        return
    if isinstance(value, dict):
        for key, part in value.items():
            types_seen(part, f"{path}.{key}" if path else key, seen)
    elif isinstance(value, list):
        for part in value:
            types_seen(part, path + "[]", seen)


def shown(text):
    """As a report shows a text of the tests' files."""
    return text.replace("\t", "\\t")


class Tool:
    def __init__(self, program, folder):
        self.program = program
        self.folder = folder

    def run(self, *arguments, command="check"):
        process = subprocess.run([self.program, command, *arguments], cwd=self.folder,
                                 capture_output=True, check=False)
        return process.returncode, process.stdout.decode(), process.stderr.decode()


def findings_of(document):
    """Path, line, severity, code and text of each finding; without a line how many more there are."""
    def listed(findings, counts, path):
        for finding in findings:
            yield (finding["file"], finding["line"], finding["severity"], finding["code"],
                   finding["text"])
        for code, count in counts.items():
            same = [finding for finding in findings if finding["code"] == code]
            if count > len(same):
                yield path, 0, same[0]["severity"], code, f"{count - len(same)} more"
    for file in document["files"]:
        yield from listed(file["findings"], file["counts"], file["file"])
    yield from listed(document["controlFindings"], document["controlCounts"], document["control"])


def findings_of_text(text):
    for path, line, severity, message, code in re.findall(
            r"^(.*?)(?::(\d+))?: (error|warning|note): (.*) \[([a-z-]+)\]$", text, re.MULTILINE):
        yield path, int(line or 0), severity, code, message


def findings_of_sarif(document):
    run = document["runs"][0]
    rules = run["tool"]["driver"]["rules"]
    for result in run["results"]:
        rule = rules[result["ruleIndex"]]
        assert rule["id"] == result["ruleId"]
        assert rule["defaultConfiguration"]["level"] == result["level"]
        place = result["locations"][0]["physicalLocation"]
        text = result["message"]["text"].replace("{{", "{").replace("}}", "}")
        yield (unquote(urlparse(place["artifactLocation"]["uri"]).path),
               place.get("region", {}).get("startLine", 0), result["level"], result["ruleId"], text)


def findings_of_github(text):
    def plain(part):
        return (part.replace("%2C", ",").replace("%3A", ":").replace("%0A", "\n")
                .replace("%0D", "\r").replace("%25", "%"))
    for line in text.splitlines():
        level, path, number, code, message = re.fullmatch(
            r"::(notice|warning|error) file=([^,:]+)(?:,line=(\d+))?(?:,title=([^,:]+))?::(.*)",
            line).groups()
        if code is not None:
            yield (plain(path), int(number or 0), level.replace("notice", "note"), plain(code),
                   plain(message))


def check_same(tool, arguments, validate_json, validate_sarif):
    """Runs each format, and returns the JSON document."""
    outcomes = {word: tool.run("-f", word, *arguments) for word in ("text", "json", "sarif", "github")}
    assert len({(code, errors) for code, _, errors in outcomes.values()}) == 1, arguments
    exit_code, text, _ = outcomes["text"]
    document = json.loads(outcomes["json"][1])
    validate_json(document)
    sarif = json.loads(outcomes["sarif"][1])
    validate_sarif(sarif)
    assert document["exitCode"] == exit_code
    invocation = sarif["runs"][0]["invocations"][0]
    assert invocation["exitCode"] == exit_code
    unreadable = [file["file"] for file in document["files"] if file["problem"] is not None]
    assert invocation["executionSuccessful"] == (not unreadable)
    assert len(invocation["toolExecutionNotifications"]) == len(unreadable)
    expected = sorted(findings_of(document))
    for_people = sorted((shown(path), *rest) for path, *rest in expected)
    assert sorted(findings_of_text(text)) == for_people, (arguments, text)
    assert sorted(findings_of_github(outcomes["github"][1])) == for_people, arguments
    assert sorted(findings_of_sarif(sarif)) == expected, arguments
    return document


def write_inputs(source, folder):
    """Returns the arguments of each run."""
    files = source / "tests" / "check" / "files"
    runs = []
    for file in sorted(files.glob("*.hts")):
        (folder / file.name).write_bytes(file.read_bytes())
        control = file.with_suffix(".txt")
        if control.exists():
            (folder / control.name).write_bytes(control.read_bytes())
            runs.append([file.name, "-c", control.name])
        else:
            runs += [[file.name], [file.name, "-c", "all.txt", "-y", "9"]]
    (folder / "all.txt").write_text("*.*: Average\nSea.Level: End\n" * 12, encoding="utf-8")
    text = (files / "text-value.hts").read_text(encoding="utf-8")
    (folder / MANY).write_text(re.sub(r"^\d+$", "1,5", text, flags=re.MULTILINE), encoding="utf-8")
    odd = "50% {0} [a](b), c:d\te.hts"
    (folder / odd).write_text(text.replace("7,5", "7,5 {0} %0A"), encoding="utf-8")
    return runs + [
        [MANY, "none.hts", odd, ".", "-c", "all.txt"],
        ["--all", MANY, "none.hts", odd, "-c", "all.txt"],
        [str(folder / MANY), "-c", "none.txt"],
        ["--ignore", "text-value", "--fail-on", "note", MANY, "missing-values.hts"],
        ["none.hts"],
    ]


def check_rejects(validator, document):
    """A document with one key less, or one more, is no such document."""
    def places(value):
        if isinstance(value, dict):
            yield value
        for part in value.values() if isinstance(value, dict) else value:
            if isinstance(part, (dict, list)):
                yield from places(part)
    for at, place in enumerate(places(document)):
        for key in [*place, None]:
            broken = copy.deepcopy(document)
            target = list(places(broken))[at]
            if key is None:
                target["other"] = None
            else:
                del target[key]
            # Keys of the counts may be any codes, and a result need not have a line.
            is_counts = all(isinstance(part, int) for part in place.values())
            if key == "region" or (is_counts and key is not None):
                continue
            assert not validator.is_valid(broken), (key, place)


def check_all(tool):
    """Each of the findings, once, by line or not; without it ten of a code."""
    some = json.loads(tool.run("-f", "json", MANY)[1])["files"][0]
    every = json.loads(tool.run("-f", "json", "-a", MANY)[1])["files"][0]
    assert len(some["findings"]) == 10 and some["counts"]["text-value"] > 20
    assert len(every["findings"]) == every["counts"]["text-value"] == some["counts"]["text-value"]
    assert every["findings"][:10] == some["findings"]


def write_changed(source, folder):
    """Writes a file and others that differ from it, and returns their names."""
    old = (source / "tests" / "tool" / "files" / "diff.hts").read_text(encoding="utf-8")
    changes = {
        "same": [],
        "texts": [("trace:4\n", ""), ("units: cms", "units: cfs"), ("2 20", "2 25")],
        "steps": [("\n2000-1-31", "\n2001-1-31"), ("\n3\n", "\n3.25\n"), ("\nNaN\n", "\n7\n")],
        "order": [("2000-1-31 24:00\n2000-2-29", "2000-2-29 24:00\n2000-1-31")],
        "scalar": [("12.5", "12.75"), ("\n1000000\n", "\ntext\n")],
        "slot": [("object_name: Lake", "object_name: Pond")],
        "run": [("number_of_runs:2", "number_of_runs:1")],
    }
    (folder / "old.hts").write_text(old, encoding="utf-8")
    for name, replacements in changes.items():
        text = old
        for before, after in replacements:
            assert before in text
            text = text.replace(before, after, 1)
        (folder / f"{name}.hts").write_text(text, encoding="utf-8")
    return [f"{name}.hts" for name in changes]


def check_diff(tool, source):
    """The text and the document of a comparison say the same."""
    schema, validator = validator_of(source / "docs" / "htstool-diff.schema.json")
    seen = {}
    for other in write_changed(source, tool.folder):
        for files in (["old.hts", other], [other, "old.hts"]):
            code, text, errors = tool.run(*files, command="diff")
            assert (code, errors) == tool.run("-f", "json", *files, command="diff")[::2]
            document = json.loads(tool.run("-f", "json", *files, command="diff")[1])
            validator.validate(document)
            assert document["exitCode"] == code == (other != "same.hts")
            lines = []
            for found in document["differences"]:
                at = 0 if found["lines"][1] is None else 1
                lines.append(f"{files[at]}:{found['lines'][at]}: {found['text']}\n")
            assert text == "".join(lines), files
            types_seen(document, "", seen)
            check_rejects(validator, document)
    expected = dict(described_keys(schema, schema))
    assert seen == expected, set(map(str, seen.items())) ^ set(map(str, expected.items()))


def main():
    program, source = Path(sys.argv[1]).resolve(), Path(sys.argv[2])
    schema, validator = validator_of(source / "docs" / "htstool-check.schema.json")
    _, sarif = validator_of(source / "tests" / "tool" / "sarif.schema.json")
    seen = {}
    with tempfile.TemporaryDirectory() as folder:
        tool = Tool(program, Path(folder))
        runs = write_inputs(source, Path(folder))
        for arguments in runs:
            document = check_same(tool, arguments, validator.validate, sarif.validate)
            types_seen(document, "", seen)
        check_rejects(validator, json.loads(tool.run("-f", "json", "text-value.hts", "-c", "all.txt")[1]))
        document = json.loads(tool.run("-f", "sarif", "missing-values.hts", "none.hts")[1])
        del document["runs"][0]["tool"]["driver"]["rules"][2:]
        check_rejects(sarif, document)
        check_all(tool)
        check_diff(tool, source)
    assert seen == dict(described_keys(schema, schema))
    print(f"{len(runs)} runs in four formats")


main()
