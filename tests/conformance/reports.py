"""What the checker prints and how it ends: reports.py CHECKER IMPORTER WRONG_PLUGINS"""

import json
import os
import struct
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree

CHECKER, IMPORTER, WRONG = sys.argv[1:4]


def run(*arguments, wrong=None):
    # The host's libraries are also found by a plug-in that stands elsewhere.
    environment = dict(os.environ, WRONG_PLUGIN=wrong or "", LD_LIBRARY_PATH=os.path.dirname(IMPORTER))
    return subprocess.run([CHECKER, *arguments], capture_output=True, text=True, env=environment)


class Reports(unittest.TestCase):
    def test_json_holds_every_check_with_verdict_and_reason(self):
        result = run(WRONG, "--json", "--check", "requests", "--check", "allocation.color", wrong="ServesSelector87")
        self.assertEqual(result.returncode, 1)
        report = json.loads(result.stdout)
        by_id = {check["id"]: check for check in report["checks"]}
        self.assertEqual((report["failed"], report["skipped"], report["seed"]), (1, 1, 1))
        self.assertEqual(report["passed"], len(by_id) - 2)
        self.assertEqual(by_id["requests.out-of-range"]["verdict"], "failed")
        self.assertIn("selector 87: 0 where 3 is right", by_id["requests.out-of-range"]["reason"])
        self.assertEqual(by_id["allocation.color"]["verdict"], "skipped")
        self.assertIn("allocates nothing", by_id["allocation.color"]["reason"])
        self.assertEqual(by_id["requests.null-records"]["suite"], "general")

    def test_junit_counts_what_json_counts(self):
        with tempfile.TemporaryDirectory() as folder:
            file = os.path.join(folder, "report.xml")
            run(WRONG, "--junit", file, "--check", "requests", "--check", "allocation.color", wrong="ServesSelector87")
            suite = xml.etree.ElementTree.parse(file).getroot()
        self.assertEqual((suite.get("failures"), suite.get("skipped")), ("1", "1"))
        self.assertEqual(int(suite.get("tests")), len(suite.findall("testcase")))
        self.assertEqual([case.get("name") for case in suite.findall("testcase") if case.find("failure") is not None],
                         ["requests.out-of-range"])

    def test_list_is_the_same_in_both_forms(self):
        ids = [line.split()[0] for line in run("--list").stdout.splitlines()]
        self.assertEqual([check["id"] for check in json.loads(run("--list", "--json").stdout)], ids)
        self.assertGreater(len(ids), 100)

    def test_crash_hang_and_early_end_are_named(self):
        crash = run(WRONG, "--check", "requests.null-records", wrong="DereferencesNullRecords")
        self.assertRegex(crash.stdout, "crashed: |ended with status [1-9]")  # a sanitizer ends it itself
        hang = run(WRONG, "--check", "tessel.selectors.27", "--time-limit", "1", wrong="HangsOnSelector27")
        self.assertIn("did not end within 1 second", hang.stdout)
        end = run(WRONG, "--check", "requests.out-of-range", wrong="EndsTheProcess")
        self.assertIn("ended with status 0 before the check did", end.stdout)

    def test_a_section_without_a_name_is_passed_over(self):
        with open(IMPORTER, "rb") as file:
            image = bytearray(file.read())
        # ELF64: the table of sections begins where byte 40 says; its second entry begins with the offset of a name.
        table, = struct.unpack_from("<Q", image, 40)
        entry_size, = struct.unpack_from("<H", image, 58)
        struct.pack_into("<I", image, table + entry_size, 0x7FFFFFFF)
        with tempfile.TemporaryDirectory() as folder:
            copy = os.path.join(folder, os.path.basename(IMPORTER))
            with open(copy, "wb") as file:
                file.write(image)
            result = run(copy, "--check", "registration.property-list")
        self.assertEqual(result.returncode, 0, result.stdout)

    def test_expectations_decide_the_exit_code(self):
        check = ("--check", "allocation.color", "--check", "requests.null-records")
        for arguments, code in (((), 0), (("--expect-skipped", "allocation.color"), 0),
                                (("--expect-skipped", "requests.null-records"), 1),
                                (("--expect-failing", "requests.null-records"), 1)):
            self.assertEqual(run(IMPORTER, *check, *arguments).returncode, code, arguments)

    def test_tessel_suite_runs_where_it_was_asked_for(self):
        check = ("--check", "tessel.file-type.described")
        renamed = run(WRONG, *check, wrong="NamesAnotherExtension")
        self.assertIn("skip  tessel.file-type.described: the importer's files are .lessel", renamed.stdout)
        self.assertEqual(renamed.returncode, 0)
        self.assertEqual(run(WRONG, *check, "--suite", "tessel", wrong="NamesAnotherExtension").returncode, 1)

    def test_documents_are_asked_for(self):
        without = run(WRONG, "--check", "open.document", wrong="NamesAnotherExtension")
        self.assertIn("skip  open.document: the checker has no document of this importer", without.stdout)

    def test_seed_repeats_damages(self):
        def reasons(seed):
            result = run(WRONG, "--json", "--check", "open.damaged", "--seed", seed, wrong="KeepsInstancesOfCutDocuments")
            return json.loads(result.stdout)["checks"][0]["reason"]
        self.assertEqual(reasons("7"), reasons("7"))
        self.assertNotEqual({reasons(str(seed)) for seed in range(6)}, {reasons("7")})

    def test_wrong_command_lines_are_said_in_one_line(self):
        for arguments in ((), ("--check",), ("--nonsense",), (IMPORTER, "--check", "frame.nonsense"),
                          (IMPORTER, "--time-limit", "0"), (IMPORTER, "--seed", "-1"), (IMPORTER, "--suite", "all"),
                          (IMPORTER, "--document", "/nowhere/a"), (IMPORTER, IMPORTER), ("",),
                          ("/nowhere/plugin.so",), ("/",),
                          (IMPORTER, "--document", "")):
            result = run(*arguments)
            self.assertEqual((result.returncode, result.stdout), (2, ""), arguments)
            self.assertEqual(result.stderr.count("\n"), 1, result.stderr)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
