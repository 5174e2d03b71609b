#!/usr/bin/env python3
"""The catalogue check: which entries count as translated, and how the
missing texts are listed (one per line, as the source writes them)."""
import os
import subprocess
import sys
import tempfile

SCRIPT = os.path.join(os.path.dirname(__file__), "..", "..", "scripts", "po_missing.py")

TEMPLATE = r'''msgid ""
msgstr ""
"Content-Type: text/plain; charset=UTF-8\n"

msgid "Open"
msgstr ""

#, c-format
msgid "Error: no zone %s in %s"
msgstr ""

msgid ""
"Line one\n"
"line two"
msgstr ""

msgid "Point"
msgid_plural "Points"
msgstr[0] ""
msgstr[1] ""
'''

HEADER = 'msgid ""\nmsgstr ""\n"Content-Type: text/plain; charset=UTF-8\\n"\n\n'
OPEN = 'msgid "Open"\nmsgstr "Öffnen"\n\n'
ZONE = '#, c-format\nmsgid "Error: no zone %s in %s"\nmsgstr "Fehler: keine Zone %s in %s"\n\n'
LINES = 'msgid ""\n"Line one\\n"\n"line two"\nmsgstr ""\n"Zeile eins\\n"\n"Zeile zwei"\n\n'
PLURAL = 'msgid "Point"\nmsgid_plural "Points"\nmsgstr[0] "Punkt"\nmsgstr[1] "Punkte"\n\n'

CASES = [
    # name, catalogue, texts listed as missing
    ("complete", HEADER + OPEN + ZONE + LINES + PLURAL, []),
    ("one absent", HEADER + ZONE + LINES + PLURAL, ["Open"]),
    ("empty translation", HEADER + 'msgid "Open"\nmsgstr ""\n\n' + ZONE + LINES + PLURAL, ["Open"]),
    ("fuzzy translation",
     HEADER + OPEN + "#, fuzzy, c-format\n" + ZONE.split("\n", 1)[1] + LINES + PLURAL,
     ["Error: no zone %s in %s"]),
    ("only in the obsolete part",
     HEADER + '#~ msgid "Open"\n#~ msgstr "Öffnen"\n\n' + ZONE + LINES + PLURAL, ["Open"]),
    ("a plural form left empty",
     HEADER + OPEN + ZONE + LINES + PLURAL.replace('"Punkte"', '""'), ["Point"]),
    ("a continued text is one text", HEADER + OPEN + ZONE + PLURAL, [r"Line one\nline two"]),
]


def main():
    failures = 0
    with tempfile.TemporaryDirectory() as folder:
        template = os.path.join(folder, "t.pot")
        with open(template, "w", encoding="utf-8") as f:
            f.write(TEMPLATE)
        for name, text, missing in CASES:
            catalogue = os.path.join(folder, "c.po")
            with open(catalogue, "w", encoding="utf-8") as f:
                f.write(text)
            run = subprocess.run([sys.executable, SCRIPT, template, catalogue],
                                 capture_output=True, text=True)
            listed = run.stdout.splitlines()[1:]
            expected_code = 1 if missing else 0
            if run.returncode != expected_code or listed != missing:
                failures += 1
                print("%s: exit %d, listed %r, expected exit %d and %r"
                      % (name, run.returncode, listed, expected_code, missing))
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
