#!/usr/bin/env python3
"""Lists the texts of a template that a catalogue does not translate.

usage: po_missing.py TEMPLATE.pot CATALOGUE.po

A text counts as translated when the catalogue has it with a non-empty
translation that is not marked fuzzy. Exit status 1 when any is missing;
the missing texts are printed one per line, escaped as in the source.
"""
import sys


def entries(path):
    """(msgid, translated, fuzzy) of every entry of a .po or .pot file;
    translated is true when every msgstr of the entry is non-empty."""
    result = []
    entry = None  # [msgid, [msgstr, ...], fuzzy]
    field = None
    pending_fuzzy = False

    def flush():
        if entry is not None and entry[0] != "":
            result.append((entry[0], bool(entry[1]) and all(entry[1]), entry[2]))

    with open(path, encoding="utf-8") as f:
        for raw in f:
            line = raw.strip()
            if line.startswith("#~") or not line:
                continue  # obsolete entries do not count
            if line.startswith("#,"):
                pending_fuzzy = any(flag.strip() == "fuzzy" for flag in line[2:].split(","))
            elif line.startswith("#"):
                continue
            elif line.startswith("msgid_plural"):
                field = "plural"
            elif line.startswith("msgid "):
                flush()
                entry = [line[len("msgid "):].strip()[1:-1], [], pending_fuzzy]
                pending_fuzzy = False
                field = "msgid"
            elif line.startswith("msgstr"):
                entry[1].append(line.split(" ", 1)[1].strip()[1:-1])
                field = "msgstr"
            elif line.startswith('"'):
                if field == "msgid":
                    entry[0] += line[1:-1]
                elif field == "msgstr":
                    entry[1][-1] += line[1:-1]
    flush()
    return result


def main():
    if len(sys.argv) != 3:
        print(__doc__.strip().splitlines()[2], file=sys.stderr)
        return 2
    template, catalogue = sys.argv[1], sys.argv[2]
    translated = {msgid for msgid, done, fuzzy in entries(catalogue) if done and not fuzzy}
    missing = [msgid for msgid, _, _ in entries(template) if msgid not in translated]
    if missing:
        print("%s lacks a translation of %d texts:" % (catalogue, len(missing)))
        for msgid in missing:
            print(msgid)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
