"""`tessel schema` against the plug-in's reader: what one takes, the other takes."""

import base64
import copy
import json
import unittest

from program import ProgramTest, document

try:
    import jsonschema
except ImportError:
    jsonschema = None

# One of each JSON type, the ends of the integers, and texts that are something to some keys.
SAMPLES = [None, True, 0, 3, -1, 2**63 - 1, 2**64 - 1, -2**63, 2**64, -2**63 - 1, 1.5, "", "true", "no", "AQEBAA==",
           "AQEBAA=", "A", [], [1], [1.5], ["x"], [[1]], [2**64], {}, {"x": 1}]


def paths(value, before=()):
    """The path of every key inside, objects first."""
    for key, inside in value.items():
        yield before + (key,)
        if isinstance(inside, dict):
            yield from paths(inside, before + (key,))


def changed(base, path, value):
    """A copy with another value at the path, or without it where the value is `...`."""
    made = copy.deepcopy(base)
    inside = made
    for key in path[:-1]:
        inside = inside[key]
    if value is ...:
        del inside[path[-1]]
    else:
        inside[path[-1]] = value
    return made


@unittest.skipIf(jsonschema is None, "python3-jsonschema is not installed")
class Schema(ProgramTest):
    def setUp(self):
        super().setUp()
        answer = self.run_program("schema")
        self.assert_done(answer)
        self.schema = json.loads(answer.out)
        jsonschema.Draft202012Validator.check_schema(self.schema)
        self.validator = jsonschema.Draft202012Validator(self.schema)
        self.whole = json.loads(self.run_program("new", "-").out)

    def read_by_plugin(self, documents):
        """Which of the documents the plug-in's reader takes."""
        names = [self.write(f"{number}.tessel", made) for number, made in enumerate(documents)]
        taken = set()
        for begin in range(0, len(names), 200):
            answer = self.run_program("info", "--json", *names[begin:begin + 200])
            reports = json.loads(answer.out) if answer.out else []
            taken |= {report["file"] for report in ([reports] if isinstance(reports, dict) else reports)}
        return [name in taken for name in names]

    def compare(self, documents):
        for made, taken in zip(documents, self.read_by_plugin([made for _, made in documents])):
            what, content = made
            with self.subTest(document=what):
                self.assertEqual(self.validator.is_valid(content), taken)

    def test_each_key_takes_the_types_that_the_reader_takes_and_no_others(self):
        self.compare([(f"{'.'.join(path)} = {value!r}", changed(self.whole, path, value))
                      for path in paths(self.whole) for value in SAMPLES])

    def test_each_key_may_be_absent_where_the_reader_goes_without_it(self):
        self.compare([(f"without {'.'.join(path)}", changed(self.whole, path, ...)) for path in paths(self.whole)])

    def test_wrappers_and_roots_are_judged_as_the_reader_does(self):
        broken = changed(self.whole, ("mFrameWidth",), "wide")
        self.compare([("wrapped", {"SerializerWrappedObject": self.whole}),
                      ("wrapped beside rubbish", {"SerializerWrappedObject": self.whole, "mFrameWidth": "wide"}),
                      ("broken inside", {"SerializerWrappedObject": broken}),
                      ("unknown keys", dict(self.whole, note=[1], mNote={"a": None})),
                      ("of version 0", changed(document(mPredefinedColorSpace="BT709"), ("mVersion",), ...)),
                      ("nothing", {})])

    def test_the_schema_names_every_key_that_the_writer_writes_and_its_standard_value(self):
        named = self.schema["$defs"]["settings"]["properties"]
        for path in paths(self.whole):
            inside = {"properties": named}
            for key in path:
                self.assertIn(key, inside["properties"], path)
                inside = inside["properties"][key]
        self.assertEqual(named["mSampleRate"]["default"], 48000)

    def test_known_values_are_offered(self):
        named = self.schema["$defs"]["settings"]["properties"]
        for key, values in (("mFieldType", [0, 1, 2]), ("mRenderFormat", [0, 1, 2]), ("mToneFormat", [0, 1]),
                            ("mIdentifierFormat", [0, 1, 2, 3]), ("mKsAudioChannelType", [2, 3])):
            offered = [choice["const"] for choice in named[key]["anyOf"] if "const" in choice]
            self.assertEqual(offered, values)
            self.assertTrue(all(choice["title"] for choice in named[key]["anyOf"] if "const" in choice))

    def test_set_refuses_what_the_reader_refuses(self):
        made = dict(self.whole)
        made["mColorSpace"] = changed(made["mColorSpace"], ("baseColorProfile", "colorProfileData"), "no base64!")
        self.write("clip.tessel", made)
        self.assert_failed(self.run_program("set", "clip.tessel", "mFrameWidth=5"), 1, "colorProfileData", "base64")
        good = base64.b64encode(bytes([9, 16, 9, 0])).decode()
        self.assert_done(self.run_program("set", "clip.tessel",
                                          "mColorSpace.baseColorProfile.colorProfileData=" + good))


if __name__ == "__main__":
    unittest.main()
